#include "worker/JobProgress.h"

#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

// Seconds that are recognised in the time of one that is read, or told apart.
constexpr double recognisedPerRead = 60;
constexpr double recognisedPerTold = 20;

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

WorkMeter::WorkMeter(double recordingSeconds, qint64 speechMs, bool speakers)
    : m_recordingSeconds(recordingSeconds)
    , m_speechMs(speechMs)
    , m_speakerSeconds(speakers ? qint64(double(speechMs) / 1000 / recognisedPerTold) + 1 : 0)
{
}

WorkMeter WorkMeter::ofUnread(double recordingSeconds, bool speakers)
{
    return {recordingSeconds, qint64(recordingSeconds * 1000), speakers};
}

qint64 WorkMeter::read(double seconds) const
{
    return qint64(std::min(seconds, m_recordingSeconds) / recognisedPerRead);
}

qint64 WorkMeter::heard(qint64 ms) const
{
    return read(m_recordingSeconds) + (ms < m_speechMs ? ms / 1000 : (m_speechMs + 999) / 1000);
}

qint64 WorkMeter::told(double share) const
{
    return heard(m_speechMs) + qint64(double(m_speakerSeconds) * share);
}

qint64 WorkMeter::whole() const
{
    return heard(m_speechMs) + m_speakerSeconds;
}

} // namespace engine
