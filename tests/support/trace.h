#pragma once

#include <QList>
#include <QString>

/// Keeps every Qt message that is written while it lives, trace lines included, and passes each on to where
/// it went before. Captures nest; each sees all messages of its own life. Made and destroyed on one thread;
/// messages may come from any.
class TraceCapture
{
public:
    struct Line
    {
        QString category; // "default" for qDebug and its kin
        QtMsgType level;  // trace lines: QtInfoMsg for 64, QtWarningMsg for 128, QtCriticalMsg for 256
        QString text;

        friend bool operator==(const Line&, const Line&) = default;
    };

    TraceCapture();
    Q_DISABLE_COPY_MOVE(TraceCapture)
    ~TraceCapture();

    [[nodiscard]] QList<Line> lines() const;
    /// The lines of one category, in order.
    [[nodiscard]] QList<Line> lines(const QString& category) const;
    [[nodiscard]] bool contains(QtMsgType level, const QString& text) const;
    void clear();

private:
    static void keep(QtMsgType level, const QMessageLogContext& context, const QString& text);

    TraceCapture* m_outer = nullptr;
    QtMessageHandler m_previous;
    QList<Line> m_lines;
};
