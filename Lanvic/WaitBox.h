#pragma once

#include <QElapsedTimer>
#include <QLabel>
#include <QObject>
#include <QPointer>
#include <QString>

#include <chrono>

/// Sets the wait cursor for as long as it lives.
class WaitCursor
{
public:
    WaitCursor();
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
    ~WaitCursor();
};

/// Whether a command is waiting for a camera, or asking the user. Commands ask this before they begin: those
/// that come from a screen reader or a desktop's global menu get through where the user's own keys and clicks
/// are held back.
[[nodiscard]] bool isBusy();

/// Holds the wait cursor for one long operation that may have to give it back in between, and shows the
/// operation's message over the owner's tree while it does. The destructor restores exactly the cursors that
/// are still set, so boxes can nest. Lives on the stack of the operation.
class WaitBox : public QObject
{
public:
    /// Shows nothing yet. `owner` must outlive the box; without one there is no message.
    WaitBox(QString text, QWidget* owner);
    WaitBox(const WaitBox&) = delete;
    WaitBox& operator=(const WaitBox&) = delete;
    ~WaitBox() override;

    /// Sets the cursor once more and paints the message before it returns, since what follows blocks.
    void showWaitCursor();
    /// Lets the window system repaint what a closed dialog covered, without user input.
    static void repaintUncovered();
    /// Says below the message how long the wait has taken and how long it takes at most, and paints that.
    /// `done` of `total` steps are over; `expectedStep` is what one takes as long as none is.
    void showProgress(int done, int total, std::chrono::milliseconds expectedStep);
    /// Takes back one cursor that this box has set, and with the last one the message.
    void restoreCursor();

private:
    void showMessage();
    void placeMessage();

    QString m_text;
    int m_cursorCount = 0; // set and not yet restored
    QWidget* m_pOwner;
    QPointer<QLabel> m_label; // child of the owner
    QElapsedTimer m_elapsed;  // since the message was shown
};
