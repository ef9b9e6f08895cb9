#pragma once

#include <QElapsedTimer>
#include <QLabel>
#include <QObject>
#include <QPointer>
#include <QString>

#include <chrono>

/// Sets the wait cursor during its lifetime.
class WaitCursor
{
public:
    WaitCursor();
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
    ~WaitCursor();
};

/// Whether a command is waiting for a camera or for the user. Every command checks this first: commands from
/// a screen reader or a desktop's global menu arrive even while keys and clicks are held back.
[[nodiscard]] bool isBusy();

/// Holds the wait cursor for one long operation, which may restore it in between, and shows the operation's
/// message over the owner's tree as long as the cursor is set. The destructor restores exactly the cursors
/// that are still set, so boxes can nest. Lives on the stack of the operation.
class WaitBox : public QObject
{
public:
    /// Shows nothing yet. `owner` must outlive the box; without one there is no message.
    WaitBox(QString text, QWidget* owner);
    WaitBox(const WaitBox&) = delete;
    WaitBox& operator=(const WaitBox&) = delete;
    ~WaitBox() override;

    /// Sets the cursor once more and paints the message before it returns, because the operation blocks.
    void showWaitCursor();
    /// Lets the window system repaint what a closed dialog covered, without user input.
    static void repaintUncovered();
    /// Shows below the message how long the wait has taken and how long it takes at most. `done` of `total`
    /// steps are complete; `expectedStep` is the estimate for one step until the first is.
    void showProgress(int done, int total, std::chrono::milliseconds expectedStep);
    /// Restores one cursor that this box has set; the last one also hides the message.
    void restoreCursor();

private:
    void showMessage();
    void placeMessage();

    QString m_text;
    int m_cursorCount = 0; // Set and not yet restored.
    QWidget* m_pOwner;
    QPointer<QLabel> m_label; // Child of the owner.
    QElapsedTimer m_elapsed;  // Since the message was shown.
};
