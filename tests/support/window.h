#pragma once

#include "MainWnd.h"
#include "support/columns.h"
#include "support/trace.h"
#include "wire/tapdevice.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QTest>
#include <QTreeWidget>

#include <functional>
#include <memory>
#include <optional>

namespace QTest {

/// Tells the first line that differs. QCOMPARE() takes this before Qt's own, which tells no line of lists
/// that differ in their size.
bool qCompare(const QStringList& actual, const QStringList& expected, const char* compared, const char*,
              const char* file, int line);

} // namespace QTest

namespace gui {

/// A host adapter with known addresses, up and running while this object lives. Only for a network namespace
/// of our own, as scripts/lab gives one.
struct Adapter : wire::TapDevice
{
    /// Addresses with prefix, as in "192.168.1.5/24". Throws std::runtime_error when the host refuses.
    Adapter(const QString& name, const QStringList& addresses, const QString& mac);
};

/// How many override cursors are set.
[[nodiscard]] int cursorDepth();

/// The child of that object name; ends the test program when there is none.
template <typename T>
T& child(QWidget& parent, const char* name)
{
    T* const found = parent.findChild<T*>(name);
    if (found == nullptr) {
        qFatal("there is no %s", name);
    }
    return *found;
}

/// The mnemonics of a window and of its menus, in order; an ambiguous one comes
/// twice.
[[nodiscard]] QString mnemonics(const QWidget& window, const QList<QAction*>& actions = {});

/// What a user does with a dialog or menu that came up.
using Answer = std::function<void(QWidget&)>;
inline void escape(QWidget& shown)
{
    QTest::keyClick(&shown, Qt::Key_Escape);
}
[[nodiscard]] Answer click(QMessageBox::StandardButton button);
/// Types into fields, by object name, and confirms with Enter.
[[nodiscard]] Answer fill(const QList<std::pair<const char*, QString>>& fields);

/// Dialogs as takeDialogs() gives them; report() is that of showException() and its kin, with the operation
/// and technical lines among the details, and without the places in the source that these name.
inline const QString notSaved = "|The configuration could not be saved.|Close|Close";
inline const QString forceIpDialog = "Assign Temporary IP Address (Force IP)";
[[nodiscard]] inline QString report(const QString& text, const QString& operation,
                                    const QStringList& technicalLines = {})
{
    return "Tessal Lanvic|" + text + "|OK,Show Details...||" +
           (QStringList{"Operation: " + operation} + technicalLines).join('|');
}
/// The report of an exception whose description is for support alone.
[[nodiscard]] inline QString reportUnexpected(const QString& operation, const QString& technicalLine)
{
    return report("The operation failed for an unexpected reason. The details say more.", operation,
                  {technicalLine});
}
/// The report of an exception of the program's own.
[[nodiscard]] inline QString reportOwn(const QString& text, const QString& operation)
{
    return report(text, operation, {text});
}

/// Base of the tests of the real window: one at a time, with private settings. A dialog or menu that nobody
/// expected is dismissed and fails the test, as does an answer to which none came.
class WindowTest : public QObject
{
    Q_OBJECT

protected:
    void openWindow()
    {
        m_window = std::make_unique<MainWnd>();
        m_window->show();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }

    template <typename T>
    T& child(const char* name)
    {
        return gui::child<T>(*m_window, name);
    }
    QTreeWidget& tree() { return child<QTreeWidget>("treeWidget"); }
    /// The texts of a row, joined with "|".
    static QString columnsOf(const QTreeWidgetItem& item);
    /// Every row in order: an adapter by its name, a camera by its columns.
    QStringList rows();
    /// The row with that text in its first column, or in its MAC column.
    QTreeWidgetItem& row(const QString& text);
    QString current() { return tree().currentItem()->text(0); }
    QPoint placeOf(QTreeWidgetItem& item) { return tree().visualItemRect(&item).center(); }
    void select(QTreeWidgetItem& item)
    {
        tree().scrollToItem(&item);
        QTest::mouseClick(tree().viewport(), Qt::LeftButton, {}, placeOf(item));
    }
    void select(const QString& text) { select(row(text)); }
    /// By a click of the right button, as the window system reports it.
    void openMenuOf(const QString& text)
    {
        tree().scrollToItem(&row(text));
        const QPoint place = tree().viewport()->mapTo(m_window.get(), placeOf(row(text)));
        QTest::mouseClick(m_window->windowHandle(), Qt::RightButton, {}, place);
    }
    QString text(const char* name) { return child<QWidget>(name).property("text").toString(); }
    bool canSave() { return child<QWidget>("btnWriteConfiguration").isEnabled(); }

    void clickOn(const char* name) { QTest::mouseClick(&child<QWidget>(name), Qt::LeftButton); }
    /// Replaces the text of a field by keys, as a user would.
    void type(const char* name, const QString& text);
    /// Types and leaves the field by Tab.
    void enter(const char* name, const QString& text)
    {
        type(name, text);
        QTest::keyClick(&child<QLineEdit>(name), Qt::Key_Tab);
    }
    void press(const QKeySequence& keys)
    {
        m_window->activateWindow(); // a dialog may have been the active one
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        QTest::keySequence(m_window.get(), keys);
    }
    void refresh() { press(QKeySequence("F5")); }
    /// Saves by Ctrl+S, answering the dialogs that come, and gives these. The button shows for a moment that
    /// it was pressed before it acts.
    QStringList save(const QList<Answer>& answers = {});
    /// Saves, expecting these dialogs, each of which is dismissed.
    void saveFails(const QStringList& dialogs)
    {
        QCOMPARE(save(QList<Answer>(dialogs.size(), escape)), dialogs);
    }

    /// Answers the next dialogs and menus, in this order.
    void expect(const QList<Answer>& answers) { m_answers << answers; }
    /// What came up since the last call: "title|text|buttons|default button", with "|wait cursor N" behind it
    /// when N cursors were set at that moment.
    QStringList takeDialogs() { return std::exchange(m_shown, {}); }
    /// The pictures of the message boxes since the last call.
    QList<QMessageBox::Icon> takeIcons() { return std::exchange(m_icons, {}); }
    /// The message beside a wait as it was painted last; empty while none is shown.
    QString paintedMessage();
    /// What was written to the trace log, or to Qt's debug output, since the last call: "level text".
    QStringList takeTrace(const QString& category = "Lanvic.Base");
    QStringList takeDebug() { return takeTrace("default"); }

    std::unique_ptr<MainWnd> m_window;

    Q_SLOT void init()
    {
        qApp->installEventFilter(this);
        m_messages.emplace();
        QSettings().clear();
    }
    Q_SLOT void cleanup();

private:
    bool eventFilter(QObject* watched, QEvent* event) override;

    QList<Answer> m_answers;
    QStringList m_shown;
    QList<QMessageBox::Icon> m_icons;
    QString m_painted;
    std::optional<TraceCapture> m_messages;
};

/// Prepares the process and runs the test; 77 where the host grants no adapters of our own.
[[nodiscard]] int run(QObject& test, int argc, char** argv);

} // namespace gui

/// The main function of a test of the window.
#define WINDOW_TEST_MAIN(Test)                                                                               \
    int main(int argc, char** argv)                                                                          \
    {                                                                                                        \
        Test test;                                                                                           \
        return gui::run(test, argc, argv);                                                                   \
    }
