#pragma once

#include "media/AudioReader.h"
#include "worker/SoundGroups.h"

#include <functional>

namespace engine {

// Reads the sound of segments, in their order. `check` is called a few times a second or more often; what it throws
// passes through. All throw Failure.
class SegmentSound
{
public:
    SegmentSound(const QString &recording, std::function<void()> check);

    // Appends the sound of the segment, and so much of what follows.
    void append(std::vector<int16_t> &samples, const Segment &segment, qint64 tailMs = 0);

    std::vector<int16_t> of(const std::vector<Piece> &pieces);

private:
    AudioReader m_reader;
    std::function<void()> m_check;
};

} // namespace engine
