#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <vector>

namespace engine {

// A stretch of sound with speech in it, in milliseconds from the start.
struct Span
{
    int64_t startMs = 0;
    int64_t endMs = 0;

    bool operator==(const Span &) const = default;
};

// Finds the stretches of a recording that hold speech and cuts them at pauses into pieces of up to about
// twenty seconds. Speech is what stands out from the level of the surrounding minute, so that neither hum nor
// a quiet voice needs a setting. Works as the sound comes in; memory does not grow with it.
class Segmenter
{
public:
    // Sound in order, 16 kHz mono, in pieces of any size.
    void add(std::span<const int16_t> samples);

    // After the last sound.
    void finish();

    // What was found so far, in order, without overlap; empties the list.
    std::vector<Span> take();

private:
    struct Threshold
    {
        int on = 0;
        int off = 0;
    };
    struct Open
    {
        int64_t start = 0; // frames
        int64_t lastSpeech = 0;
        int64_t speechFrames = 0;
    };

    void addFrame();
    void decide(int64_t frame);
    void updateThreshold();
    int levelAtShare(double share) const;
    int level(int64_t frame) const { return m_levels[size_t(frame - m_firstLevel)]; }
    bool speechAt(int64_t frame);
    void cutIfDue(int64_t frame);
    int64_t quietestFrame(int64_t from, int64_t to) const;
    void close(int64_t endFrame);

    std::array<int16_t, 160> m_frame{};
    size_t m_inFrame = 0;
    int m_previous = 0;

    std::deque<uint8_t> m_levels; // of the frames around the one being decided
    std::array<int64_t, 128> m_histogram{};
    int64_t m_firstLevel = 0;
    int64_t m_arrived = 0;
    int64_t m_decided = 0;

    Threshold m_threshold;
    bool m_speaking = false;
    int m_loudInRow = 0;
    std::optional<Open> m_open;
    int64_t m_lastEnd = 0;
    std::vector<Span> m_found;
};

} // namespace engine
