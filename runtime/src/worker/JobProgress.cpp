#include "worker/JobProgress.h"

#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

constexpr double recognisedPerPlanned = 60;

} // namespace

JobProgress::JobProgress(const QString &shown)
    : m_text(shown)
{
    const QStringList numbers = shown.split(u'/');
    if (numbers.size() != 2 || numbers[1].toLongLong() <= 0)
        return;
    m_whole = numbers[1].toLongLong();
    m_done = std::clamp(numbers[0].toLongLong(), qint64(0), m_whole);
}

std::optional<QString> JobProgress::advance(qint64 done, qint64 whole)
{
    whole = std::max<qint64>(whole, 1);
    // The smallest number that is no smaller part of this whole than what was shown.
    const qint64 least = (m_done * whole + m_whole - 1) / m_whole;
    m_done = std::min(std::max(done, least), whole);
    m_whole = whole;
    const QString text = u"%1/%2"_s.arg(m_done).arg(m_whole);
    if (text == m_text)
        return std::nullopt;
    m_text = text;
    return text;
}

qint64 planningSeconds(double recordingSeconds)
{
    return qint64(recordingSeconds / recognisedPerPlanned);
}

} // namespace engine
