#pragma once

#include <Eigen/Core>

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

struct fe_s;

namespace engine {

// How many numbers describe the spectrum of one frame, and so the voice in it.
inline constexpr int cepstrumSize = 19;
inline constexpr int64_t cepstrumFrameMs = 10;

// One column for each frame.
using Cepstra = Eigen::Matrix<float, cepstrumSize, Eigen::Dynamic>;

// The frames of a stretch of sound in which somebody is heard; the pauses between words are left out.
struct VoicedFrames
{
    Cepstra cepstra;
    std::vector<int> at; // which frame of the stretch each column is, rising

    int count() const { return int(at.size()); }
};

// Computes mel cepstra with PocketSphinx's front end. Loudness is not among them, only the form of the
// spectrum. The same sound always gives the same frames.
class CepstraSource
{
public:
    // Throws Failure.
    CepstraSource();

    // Of 16 kHz mono sound.
    VoicedFrames voiced(std::span<const int16_t> samples);

private:
    struct Release
    {
        void operator()(fe_s *frontEnd) const;
    };

    std::unique_ptr<fe_s, Release> m_frontEnd;
};

} // namespace engine
