#pragma once

#include "core/FileDescriptor.h"
#include "recognise/Recogniser.h"

#include <QByteArray>

#include <functional>
#include <span>
#include <sys/types.h>

namespace engine {

// Recognises one segment in a child process of its own, forked from this one with the model already loaded:
// it can be dropped at any moment, it starts from the same state for every segment, and a crash in it is not
// ours. The child dies with its parent.
class SegmentProcess
{
public:
    enum class State { Running, Done, Died };

    // `inChild` runs first in the child, to let go of what must not outlive the parent. Throws Failure when
    // there can be no child.
    SegmentProcess(Recogniser &recogniser, std::span<const int16_t> samples,
                   const std::function<void()> &inChild);

    // Kills the child when it still runs.
    ~SegmentProcess();
    SegmentProcess(const SegmentProcess &) = delete;
    SegmentProcess &operator=(const SegmentProcess &) = delete;

    // Waits for the end of the child, but no longer than that.
    State wait(int limitMs);

    // What was recognised, once Done. Throws the Failure that the child reported.
    std::vector<Word> words() const;

private:
    State reap();

    FileDescriptor m_answerPipe;
    QByteArray m_answer;
    pid_t m_child = -1;
};

} // namespace engine
