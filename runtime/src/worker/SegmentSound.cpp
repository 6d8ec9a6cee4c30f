#include "worker/SegmentSound.h"

#include "core/Failure.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

constexpr int64_t soundPerMs = sampleRate / 1000;
constexpr int64_t skippedAtOnce = 16384;

// The plan was made of what was read before, up to its last sample at most.
Failure shorterThanPlanned()
{
    return Failure(u"The recording has become shorter since it was taken."_s);
}

} // namespace

SegmentSound::SegmentSound(const QString &recording, std::function<void()> check)
    : m_reader(recording)
    , m_check(std::move(check))
{
}

void SegmentSound::append(std::vector<int16_t> &samples, const Segment &segment, qint64 tailMs)
{
    const int64_t start = segment.startMs * soundPerMs;
    while (m_reader.position() < start) {
        const int64_t before = m_reader.position();
        m_reader.skip(std::min(start - before, skippedAtOnce));
        m_check();
        if (m_reader.position() == before)
            throw shorterThanPlanned();
    }
    const size_t before = samples.size();
    samples.resize(before + size_t((segment.endMs - segment.startMs + tailMs) * soundPerMs));
    const std::span<int16_t> wanted = std::span(samples).subspan(before);
    if (m_reader.read(wanted) < wanted.size())
        throw shorterThanPlanned();
}

std::vector<int16_t> SegmentSound::of(const std::vector<Piece> &pieces)
{
    qint64 soundMs = 0;
    for (const Piece &piece : pieces)
        soundMs += piece.soundMs();
    std::vector<int16_t> samples;
    samples.reserve(size_t(soundMs * soundPerMs));
    for (const Piece &piece : pieces)
        append(samples, piece.segment, piece.tailMs);
    return samples;
}

} // namespace engine
