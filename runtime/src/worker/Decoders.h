#pragma once

#include "worker/SegmentProcess.h"
#include "worker/SoundGroups.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace engine {

// A sound to be recognised, and the pieces of the recording that it is made of.
struct SoundTask
{
    std::vector<Piece> pieces;
    std::vector<int16_t> samples;
    QString language = {}; // as in Sound

    qint64 speechMs() const;
};

// Recognises several sounds side by side, each in a process of its own. One whose process died is begun
// again.
class Decoders
{
public:
    // `most` work at once. `beginning` is called at every attempt at a task, `inChild` first in each process.
    Decoders(Recogniser &recogniser, int most, std::function<void(const SoundTask &)> beginning,
             std::function<void()> inChild);

    bool full() const { return int(m_running.size()) >= m_most; }
    bool idle() const { return m_running.empty(); }

    // Only when not full. Throws Failure when there can be no process.
    void begin(SoundTask task);

    struct Done
    {
        SoundTask task;
        Heard heard;
    };

    // Waits for something to happen, but no longer than that, and gives a task that is done, if any. Throws
    // the Failure of a recogniser, also for one that breaks down too often.
    std::optional<Done> wait(int limitMs);

    // How much of the speech in the unfinished tasks is done; it goes back when one begins again.
    qint64 unfinishedMs() const;

private:
    struct Running
    {
        SoundTask task;
        std::unique_ptr<SegmentProcess> process;
        int deaths = 0;
    };

    void launch(Running &running);
    void beginAgain(Running &running);

    Recogniser &m_recogniser;
    int m_most;
    std::function<void(const SoundTask &)> m_beginning;
    std::function<void()> m_inChild;
    std::vector<Running> m_running; // the longest at work first
};

} // namespace engine
