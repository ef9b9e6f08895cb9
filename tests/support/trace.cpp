#include "trace.h"

#include <algorithm>
#include <mutex>
#include <utility>

namespace {

std::mutex s_mutex;
TraceCapture* s_innermost = nullptr;

} // namespace

TraceCapture::TraceCapture() : m_previous(qInstallMessageHandler(&TraceCapture::keep))
{
    const std::scoped_lock lock(s_mutex);
    m_outer = std::exchange(s_innermost, this);
}

TraceCapture::~TraceCapture()
{
    qInstallMessageHandler(m_previous);
    const std::scoped_lock lock(s_mutex);
    s_innermost = m_outer;
}

QList<TraceCapture::Line> TraceCapture::lines() const
{
    const std::scoped_lock lock(s_mutex);
    return m_lines;
}

QList<TraceCapture::Line> TraceCapture::lines(const QString& category) const
{
    QList<Line> selected = lines();
    selected.removeIf([&](const Line& line) { return line.category != category; });
    return selected;
}

bool TraceCapture::contains(QtMsgType level, const QString& text) const
{
    const QList<Line> all = lines();
    return std::ranges::any_of(all,
                               [&](const Line& line) { return line.level == level && line.text == text; });
}

void TraceCapture::clear()
{
    const std::scoped_lock lock(s_mutex);
    m_lines.clear();
}

void TraceCapture::keep(QtMsgType level, const QMessageLogContext& context, const QString& text)
{
    QtMessageHandler before = nullptr;
    {
        const std::scoped_lock lock(s_mutex);
        for (TraceCapture* capture = s_innermost; capture != nullptr; capture = capture->m_outer) {
            capture->m_lines.append({QString::fromUtf8(context.category), level, text});
            before = capture->m_previous;
        }
    }
    if (before != nullptr) {
        before(level, context, text);
    }
}
