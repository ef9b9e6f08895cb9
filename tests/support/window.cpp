#include "support/window.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QNetworkInterface>
#include <QProcess>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
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
    QStringList commands{"link set " + name + " addrgenmode none address " + mac};
    for (const QString& address : addresses) {
        commands << "addr add " + address + " dev " + name;
    }
    commands << "link set " + name + " up";
    for (const QString& command : commands) {
        if (QProcess::execute("ip", command.split(' ')) != 0) {
            throw std::runtime_error("ip " + command.toStdString() + " failed");
        }
    }
    const auto isRunning = [&name] { // the carrier is announced a little later
        return QNetworkInterface::interfaceFromName(name).flags().testFlag(QNetworkInterface::IsRunning);
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

QString letters(const QWidget& window, const QList<QAction*>& actions)
{
    QStringList texts;
    for (const auto* const button : window.findChildren<QAbstractButton*>()) {
        texts << button->text();
    }
    for (const auto* const label : window.findChildren<QLabel*>()) {
        texts << (label->buddy() != nullptr ? label->text() : QString());
    }
    for (const QAction* const action : actions) {
        texts << action->text();
    }
    QString found;
    for (const QString& text : texts) {
        found += QKeySequence::mnemonic(text).toString().section('+', -1);
    }
    std::ranges::sort(found);
    return found;
}

void escape(QWidget& shown)
{
    QTest::keyClick(&shown, Qt::Key_Escape);
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
    if (event->type() != QEvent::Show || (!qobject_cast<QDialog*>(shown) && !qobject_cast<QMenu*>(shown))) {
        return false;
    }
    m_shown << describe(*shown);
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

void WindowTest::init()
{
    qApp->installEventFilter(this);
    m_messages.emplace();
    QSettings().clear();
}

void WindowTest::cleanup()
{
    m_window.reset();
    m_messages.reset();
    m_shown.clear();
    QVERIFY2(std::exchange(m_answers, {}).isEmpty(), "a dialog did not come");
    QCOMPARE(cursorDepth(), 0);
}

void WindowTest::openWindow()
{
    m_window = std::make_unique<MainWnd>();
    m_window->show();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
}

QStringList WindowTest::rows()
{
    QStringList lines;
    for (QTreeWidgetItemIterator item(&tree()); *item != nullptr; ++item) {
        QStringList columns;
        for (int column = 0; column < tree().columnCount(); ++column) {
            columns << (*item)->text(column);
        }
        const bool isAdapter = (*item)->data(0, Qt::UserRole).toInt() == 1;
        lines << ((*item)->parent() != nullptr ? "  " : "") + (isAdapter ? columns[0] : columns.join('|'));
    }
    return lines;
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

void WindowTest::select(QTreeWidgetItem& item)
{
    tree().scrollToItem(&item);
    QTest::mouseClick(tree().viewport(), Qt::LeftButton, {}, tree().visualItemRect(&item).center());
}

void WindowTest::openMenuOf(const QString& row)
{
    emit tree().customContextMenuRequested(tree().visualItemRect(&this->row(row)).center());
}

void WindowTest::type(const char* name, const QString& text)
{
    retype(child<QLineEdit>(name), text);
}

void WindowTest::enter(const char* name, const QString& text)
{
    type(name, text);
    QTest::keyClick(&child<QLineEdit>(name), Qt::Key_Tab);
}

void WindowTest::press(const QKeySequence& keys)
{
    m_window->activateWindow(); // a dialog may have been the active one
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    QTest::keySequence(m_window.get(), keys);
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
    static const char* const levels[] = {"debug", "warning", "error", "fatal", "info"};
    QStringList lines;
    for (const TraceCapture::Line& line : m_messages->lines(category)) {
        if (!line.text.contains("propagateSizeHints")) { // the offscreen platform says so of every window
            lines << QString::fromLatin1(levels[line.level]) + ' ' + line.text;
        }
    }
    m_messages->clear();
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
