#pragma once

#include "speakers/CepstraFile.h"
#include "speakers/Grouping.h"
#include "speakers/Mixture.h"

#include <QDir>

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace engine {

// Somebody speaks, in milliseconds from the start of the recording. Speakers are numbered from 0.
struct Turn
{
    int64_t startMs = 0;
    int64_t endMs = 0;
    int speaker = 0;

    bool operator==(const Turn &) const = default;
};

// Tells the voices of one recording apart, without knowing any beforehand. It is given the recording twice,
// in the same pieces: first to learn the voices, then to say who speaks where. The same recording always gives
// the same turns. Memory does not grow with the recording: of one that holds more than about an hour of
// speech, it learns from every second piece only, or every fourth…
class SpeakerFinder
{
public:
    // `check` is called a few times a second or more often; what it throws passes through. What is heard is put aside
    // in the folder, without a name. Throws Failure, as the others do.
    explicit SpeakerFinder(std::function<void()> check, const QString &folder = QDir::tempPath());

    // First time: the next piece in which somebody speaks, as 16 kHz mono sound of up to half a minute.
    void hear(std::span<const int16_t> samples);

    // Told how much of something is done: 0 to 1, and never less than before.
    using Show = std::function<void(double share)>;

    // After the last piece: finds out how many voices there are and what they sound like.
    void learn(const Show &show = [](double) {});

    // Second time: who speaks in a piece that starts there. Turns are in order and do not overlap; there are
    // none when no voice is heard.
    std::vector<Turn> turns(int64_t startMs, std::span<const int16_t> samples);

    // What it holds on to, in frames of 10 ms; for tests.
    int64_t framesKept() const { return m_frames; }

private:
    struct Piece
    {
        CepstraFile::Place cepstra;
        std::vector<int16_t> speaker; // of each frame
    };

    void thinOut();
    VoiceMeasure measureOf(double strictness) const;
    void groupRuns(const Show &show);
    bool groupSpeakers();
    void trainVoices();
    void relabel(const Show &show);
    std::vector<int> path(const Cepstra &cepstra) const;
    int speakerCount() const;
    Eigen::Index framesOf(int speaker) const;
    Cepstra someFramesOf(int speaker) const;

    std::function<void()> m_check;
    CepstraSource m_source;
    CepstraFile m_aside;
    std::vector<Piece> m_pieces;
    int64_t m_heard = 0;
    int64_t m_everyNth = 1;
    Eigen::Index m_frames = 0;
    std::vector<Mixture> m_voices;
};

} // namespace engine
