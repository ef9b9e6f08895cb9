#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// Keeps every Qt message that is written while it lives, trace lines included, and passes each on to where
/// it went before. One at a time, made and destroyed on one thread; messages may come from any.
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

    /// The lines in order, of one category where that is given.
    [[nodiscard]] QList<Line> lines(const QString& category = {}) const;
    /// The same as "level text".
    [[nodiscard]] QStringList texts(const QString& category = {}) const;
};
