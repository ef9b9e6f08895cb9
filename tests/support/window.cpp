#include "support/window.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QNetworkInterface>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <net/if.h>
#include <stdexcept>

namespace gui {

namespace {

QString describe(QWidget& shown)
{
    QStringList parts{shown.windowTitle()};
    if (const auto* const box = qobject_cast<QMessageBox*>(&shown)) {
        QStringList buttons;
        for (const QAbstractButton* const button : box->buttons()) {
            buttons << button->text().remove('&');
        }
        buttons.sort();
        const QAbstractButton* const standard = box->defaultButton();
        parts << box->text() << buttons.join(',') << (standard ? standard->text().remove('&') : QString());
        static const QRegularExpression origin(R"( : \w+ thrown \(file .*\)$)");
        if (box->detailedText().startsWith("Operation: ")) {
            for (QString line : box->detailedText().split('\n')) {
                parts << line.remove(origin);
            }
        }
    }
    if (const int depth = cursorDepth(); depth > 0) {
        parts << "wait cursor " + QString::number(depth);
    }
    return parts.join('|');
}

void retype(QLineEdit& edit, const QString& text)
{
    QTest::mouseClick(&edit, Qt::LeftButton);
    QTest::keySequence(&edit, QKeySequence::SelectAll);
    QTest::keyClick(&edit, Qt::Key_Delete);
    for (const QChar character : text) { // QTest's own keys end with ASCII
        QKeyEvent key(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QString(character));
        QApplication::sendEvent(&edit, &key);
    }
}

} // namespace

Adapter::Adapter(const QString& name, const QStringList& addresses, const QString& mac)
    : TapDevice(name.toStdString())
{
    QString command = "ip link set %1 addrgenmode none address " + mac;
    for (const QString& address : addresses) {
        command += " && ip addr add " + address + " dev %1";
    }
    if (QProcess::execute("sh", {"-c", (command + " && ip link set %1 up").arg(name)}) != 0) {
        throw std::runtime_error("the adapter cannot be set up");
    }
    const int index = static_cast<int>(if_nametoindex(name.toUtf8().constData()));
    const auto isRunning = [index] { // the carrier is announced a little later
        return QNetworkInterface::interfaceFromIndex(index).flags().testFlag(QNetworkInterface::IsRunning);
    };
    if (!QTest::qWaitFor(isRunning)) {
        throw std::runtime_error("the adapter does not come up");
    }
}

int cursorDepth()
{
    QList<QCursor> stack;
    for (; QGuiApplication::overrideCursor() != nullptr; QGuiApplication::restoreOverrideCursor()) {
        stack.prepend(*QGuiApplication::overrideCursor());
    }
    for (const QCursor& cursor : stack) {
        QGuiApplication::setOverrideCursor(cursor);
    }
    return static_cast<int>(stack.size());
}

QString mnemonics(const QWidget& window, const QList<QAction*>& actions)
{
    QString found;
    const auto add = [&found](const auto& labelled) {
        for (const auto* const one : labelled) {
            found += QKeySequence::mnemonic(one->text()).toString().section('+', -1);
        }
    };
    add(window.findChildren<QAbstractButton*>());
    add(window.findChildren<QLabel*>());
    add(actions);
    std::ranges::sort(found);
    return found;
}

Answer click(QMessageBox::StandardButton button)
{
    return [button](QWidget& shown) {
        auto* const box = qobject_cast<QMessageBox*>(&shown);
        if (box == nullptr || box->button(button) == nullptr) {
            qFatal("no box with that button: %s", qPrintable(describe(shown)));
        }
        QTest::mouseClick(box->button(button), Qt::LeftButton);
    };
}

Answer fill(const QList<std::pair<const char*, QString>>& fields)
{
    return [fields](QWidget& shown) {
        for (const auto& [name, text] : fields) {
            retype(child<QLineEdit>(shown, name), text);
        }
        QTest::keyClick(&shown, Qt::Key_Return);
    };
}

bool WindowTest::eventFilter(QObject* watched, QEvent* event)
{
    auto* const shown = qobject_cast<QWidget*>(watched);
    if (event->type() == QEvent::Paint && watched->objectName() == "waitMessage") {
        m_painted = qobject_cast<QLabel*>(watched)->text();
    }
    if (event->type() != QEvent::Show || (!qobject_cast<QDialog*>(shown) && !qobject_cast<QMenu*>(shown))) {
        return false;
    }
    m_shown << describe(*shown);
    if (const auto* const box = qobject_cast<QMessageBox*>(shown)) {
        m_icons << box->icon();
    }
    const auto answer = [this, shown] {
        if (m_answers.isEmpty()) {
            QTest::qFail(qPrintable("unexpected: " + m_shown.last()), __FILE__, __LINE__);
            shown->close();
        } else {
            m_answers.takeFirst()(*shown);
        }
    };
    QMetaObject::invokeMethod(shown, answer, Qt::QueuedConnection);
    return false;
}

void WindowTest::cleanup()
{
    m_window.reset();
    m_messages.reset();
    m_shown.clear();
    m_icons.clear();
    QVERIFY2(std::exchange(m_answers, {}).isEmpty(), "a dialog did not come");
    QCOMPARE(cursorDepth(), 0);
}

QString WindowTest::columnsOf(const QTreeWidgetItem& item)
{
    QStringList columns;
    for (int column = 0; column < item.columnCount(); ++column) {
        columns << item.text(column);
    }
    return columns.join('|');
}

QStringList WindowTest::rows()
{
    QStringList lines;
    for (QTreeWidgetItemIterator item(&tree()); *item != nullptr; ++item) {
        lines << ((*item)->parent() != nullptr ? "  " : "") +
                     ((*item)->isFirstColumnSpanned() ? (*item)->text(0) : columnsOf(**item));
    }
    return lines;
}

QString WindowTest::paintedMessage()
{
    const auto* const message = m_window->findChild<QLabel*>("waitMessage");
    return message != nullptr && message->isVisible() ? m_painted : QString();
}

QTreeWidgetItem& WindowTest::row(const QString& text)
{
    for (QTreeWidgetItemIterator item(&tree()); *item != nullptr; ++item) {
        if ((*item)->text(0) == text || (*item)->text(3) == text) {
            return **item;
        }
    }
    qFatal("there is no row %s", qPrintable(text));
}

void WindowTest::type(const char* name, const QString& text)
{
    retype(child<QLineEdit>(name), text);
}

QStringList WindowTest::save(const QList<Answer>& answers)
{
    expect(answers);
    m_shown.clear();
    press(QKeySequence("Ctrl+S"));
    const auto& button = child<QAbstractButton>("btnWriteConfiguration");
    if (!QTest::qWaitFor([&button] { return !button.isDown(); })) {
        QTest::qFail("the button stays down", __FILE__, __LINE__);
    }
    return takeDialogs();
}

QStringList WindowTest::takeTrace(const QString& category)
{
    QStringList lines = m_messages->texts(category);
    m_messages.emplace();
    return lines;
}

int run(QObject& test, int argc, char** argv)
{
    try {
        const Adapter probe("lan0", {}, "02:00:00:00:01:05");
    } catch (const std::runtime_error& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 77;
    }
    QCoreApplication::setApplicationName("Tessal Lanvic");
    QCoreApplication::setOrganizationName("Orvik");
    const QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    const QApplication application(argc, argv);
    return QTest::qExec(&test, argc, argv);
}

} // namespace gui

bool QTest::qCompare(const QStringList& actual, const QStringList& expected, const char* compared,
                     const char* /*expectedText*/, const char* file, int line)
{
    const qsizetype first = std::ranges::mismatch(actual, expected).in1 - actual.begin();
    const QString told = QString("Line %1 of %2 is not as expected.\n   Actual  : %3\n   Expected: %4")
                             .arg(first + 1)
                             .arg(compared, actual.value(first, "(none)"), expected.value(first, "(none)"));
    return actual == expected || (qFail(qPrintable(told), file, line), false);
}
