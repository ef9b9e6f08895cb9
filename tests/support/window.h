#pragma once

#include "Lanvic/MainWnd.h"
#include "support/trace.h"

#include <QMessageBox>
#include <QTest>
#include <QTreeWidget>

#include <functional>
#include <memory>
#include <optional>

namespace gui {

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

/// Replaces the text of a line edit by keys, as a user would.
void type(QWidget& parent, const char* name, const QString& text);

/// Fills the table of a test with rows that have a `name`; the test fetches each as "row".
template <typename Row>
void rows(std::initializer_list<Row> table)
{
    QTest::addColumn<Row>("row");
    for (const Row& row : table) {
        QTest::newRow(row.name) << row;
    }
}

/// What a user does with a dialog or menu that came up.
using Answer = std::function<void(QWidget&)>;
[[nodiscard]] Answer press(Qt::Key key);
[[nodiscard]] Answer click(QMessageBox::StandardButton button);
/// Types into fields, by object name, and confirms with Enter.
[[nodiscard]] Answer fill(const QList<std::pair<const char*, QString>>& fields);

/// Answers modal dialogs and menus in the order given. One that nobody expected is dismissed and fails the
/// test, as does an answer to which no dialog came.
class Dialogs : public QObject
{
public:
    void expect(Answer answer) { m_answers << std::move(answer); }
    /// What came up since the last call: "title|text|buttons|default button", with "|wait cursor N" behind it
    /// when N cursors were set at that moment.
    QStringList take() { return std::exchange(m_shown, {}); }
    /// Empty, or what went otherwise than expected since the last call.
    QString takeFailures();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void answer(QWidget& shown);

    QList<Answer> m_answers;
    QStringList m_shown;
    QStringList m_failures;
};

/// Base of the tests of the real window: one at a time, with private settings.
class WindowTest : public QObject
{
    Q_OBJECT

protected:
    void openWindow();

    template <typename T>
    T& child(const char* name)
    {
        return gui::child<T>(*m_window, name);
    }
    QTreeWidget& tree() { return child<QTreeWidget>("treeWidget"); }
    /// Every row in order: an adapter by its name, a camera by its columns joined with "|".
    QStringList rows();
    /// The row with that text in its first column, or in its MAC column.
    QTreeWidgetItem& row(const QString& text);
    void select(QTreeWidgetItem& item);
    void select(const QString& text) { select(row(text)); }
    void type(const char* name, const QString& text) { gui::type(*m_window, name, text); }
    /// Types and leaves the field by Tab.
    void enter(const char* name, const QString& text);
    QString text(const char* name);
    void press(const QKeySequence& keys);
    /// Saves by Ctrl+S. The button shows for a moment that it was pressed before it acts.
    void save();

    /// What was written to the trace log, or to Qt's debug output, since the last call: "level text".
    QStringList takeTrace(const QString& category = "Lanvic.Base");
    QStringList takeDebug() { return takeTrace("default"); }

    Dialogs m_dialogs;
    std::unique_ptr<MainWnd> m_window;

    Q_SLOT void init();
    Q_SLOT void cleanup();

private:
    std::optional<TraceCapture> m_messages;
};

/// The line of showException() and its kin among the dialogs shown.
[[nodiscard]] inline QString report(const QString& text)
{
    return "Tessal Lanvic|" + text + "|OK,Show Details...|";
}

/// Prepares the process and runs the test; 77 where the host grants no adapters of our own.
[[nodiscard]] int run(QObject& test, int argc, char** argv);

} // namespace gui
