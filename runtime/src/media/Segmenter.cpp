#include "media/Segmenter.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace engine {

namespace {

// All counts are frames of 10 ms, all levels decibels above one unit of the sample.
constexpr int64_t lookAround = 3000;
constexpr int64_t thresholdEvery = 10;
constexpr int smallestRange = 9; // less between quiet and loud is noise without speech
constexpr int loudToStart = 3;
constexpr int64_t padBefore = 15;
constexpr int64_t padAfter = 20;
constexpr int64_t longest = 2000;
constexpr int64_t searchForCut = 600;
constexpr int64_t leastSpeech = 10;
constexpr int64_t vadFrameMs = 10;

// How long a pause must be to end a piece that is already so long: short pieces lose context, long ones cost
// more when the work is interrupted.
int64_t pauseToCut(int64_t length)
{
    if (length < 300)
        return 80;
    if (length < 800)
        return 50;
    return length < 1200 ? 30 : 20;
}

int levelOf(std::span<const int16_t> frame, int &previous)
{
    double sum = 0;
    for (const int16_t sample : frame) {
        // Emphasis of high frequencies: hum and rumble weigh little, hissing consonants enough.
        const double emphasised = double(sample) - 0.97 * previous;
        previous = sample;
        sum += emphasised * emphasised;
    }
    return int(std::lround(10 * std::log10(1 + sum / double(frame.size()))));
}

} // namespace

void Segmenter::add(std::span<const int16_t> samples)
{
    while (!samples.empty()) {
        const size_t count = std::min(samples.size(), m_frame.size() - m_inFrame);
        std::copy_n(samples.begin(), count, m_frame.begin() + std::ptrdiff_t(m_inFrame));
        m_inFrame += count;
        samples = samples.subspan(count);
        if (m_inFrame == m_frame.size())
            addFrame();
    }
}

void Segmenter::addFrame()
{
    const int found = std::clamp(levelOf(m_frame, m_previous), 0, int(m_histogram.size()) - 1);
    m_inFrame = 0;
    m_levels.push_back(uint8_t(found));
    ++m_histogram[size_t(found)];
    ++m_arrived;
    if (m_arrived - m_decided > lookAround)
        decide(m_decided++);
    while (m_decided - m_firstLevel > lookAround) {
        --m_histogram[m_levels.front()];
        m_levels.pop_front();
        ++m_firstLevel;
    }
}

void Segmenter::finish()
{
    while (m_decided < m_arrived)
        decide(m_decided++);
    if (m_open)
        close(std::min(m_open->lastSpeech + padAfter, m_arrived));
}

std::vector<Span> Segmenter::take()
{
    return std::exchange(m_found, {});
}

int Segmenter::levelAtShare(double share) const
{
    const auto wanted = int64_t(share * double(m_levels.size() - 1));
    int64_t seen = 0;
    for (size_t i = 0; i < m_histogram.size(); ++i) {
        seen += m_histogram[i];
        if (seen > wanted)
            return int(i);
    }
    return int(m_histogram.size()) - 1;
}

void Segmenter::updateThreshold()
{
    const int quiet = levelAtShare(0.10);
    const int loud = levelAtShare(0.997);
    const int range = loud - quiet;
    if (range < smallestRange) {
        m_threshold = {std::numeric_limits<int>::max(), std::numeric_limits<int>::max()};
        return;
    }
    m_threshold.on = quiet + std::max(7, range * 30 / 100);
    m_threshold.off = quiet + std::max(5, range * 20 / 100);
}

bool Segmenter::speechAt(int64_t frame)
{
    const int found = level(frame);
    m_loudInRow = found >= m_threshold.on ? m_loudInRow + 1 : 0;
    m_speaking = m_speaking ? found >= m_threshold.off : m_loudInRow >= loudToStart;
    return m_speaking;
}

void Segmenter::decide(int64_t frame)
{
    if (frame % thresholdEvery == 0)
        updateThreshold();
    if (speechAt(frame)) {
        if (!m_open)
            m_open = Open{std::max(m_lastEnd, frame - loudToStart + 1 - padBefore), frame, 0};
        m_open->lastSpeech = frame;
        ++m_open->speechFrames;
    }
    if (m_open)
        cutIfDue(frame);
}

void Segmenter::cutIfDue(int64_t frame)
{
    const int64_t length = m_open->lastSpeech - m_open->start;
    if (frame - m_open->lastSpeech >= pauseToCut(length)) {
        close(m_open->lastSpeech + padAfter);
    } else if (frame - m_open->start >= longest) {
        const int64_t cut = quietestFrame(frame - searchForCut, frame);
        const int64_t lastSpeech = m_open->lastSpeech;
        close(cut);
        if (lastSpeech > cut)
            m_open = Open{cut, lastSpeech, lastSpeech - cut};
    }
}

int64_t Segmenter::quietestFrame(int64_t from, int64_t to) const
{
    int64_t best = from;
    int least = std::numeric_limits<int>::max();
    for (int64_t frame = from + 2; frame + 2 < to; ++frame) {
        int sum = 0;
        for (int64_t near = frame - 2; near <= frame + 2; ++near)
            sum += level(near);
        if (sum < least) {
            least = sum;
            best = frame;
        }
    }
    return best;
}

void Segmenter::close(int64_t endFrame)
{
    if (m_open->speechFrames >= leastSpeech) {
        m_found.push_back({m_open->start * vadFrameMs, endFrame * vadFrameMs});
        m_lastEnd = endFrame;
    }
    m_open.reset();
}

} // namespace engine
