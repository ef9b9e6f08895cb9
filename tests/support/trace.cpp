#include "support/trace.h"

#include <mutex>

namespace {

std::mutex s_mutex;
QList<TraceCapture::Line> s_lines;
QtMessageHandler s_previous = nullptr;

void keep(QtMsgType level, const QMessageLogContext& context, const QString& text)
{
    {
        const std::scoped_lock lock(s_mutex);
        s_lines.append({QString::fromUtf8(context.category), level, text});
    }
    s_previous(level, context, text);
}

} // namespace

TraceCapture::TraceCapture()
{
    const std::scoped_lock lock(s_mutex);
    s_lines.clear();
    s_previous = qInstallMessageHandler(keep);
}

TraceCapture::~TraceCapture()
{
    qInstallMessageHandler(s_previous);
}

QList<TraceCapture::Line> TraceCapture::lines(const QString& category) const
{
    const std::scoped_lock lock(s_mutex);
    QList<Line> selected = s_lines;
    selected.removeIf([&](const Line& line) { return !category.isEmpty() && line.category != category; });
    return selected;
}

QStringList TraceCapture::texts(const QString& category) const
{
    static const char* const levels[] = {"debug", "warning", "error", "fatal", "info"};
    QStringList told;
    for (const Line& line : lines(category)) {
        told << QString::fromLatin1(levels[line.level]) + ' ' + line.text;
    }
    return told;
}
