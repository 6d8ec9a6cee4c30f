#pragma once

#include "core/FileDescriptor.h"
#include "recognise/Recogniser.h"

#include <QByteArray>

#include <functional>
#include <sys/types.h>

namespace engine {

// Recognises one sound in a child process of its own, forked from this one with the model already loaded: it
// can be dropped at any moment, it starts from the same state for every sound, and a crash in it is not ours.
// The child leads a process group, which dies with it and with its parent.
class SegmentProcess
{
public:
    enum class State { Running, Done, Died };

    // `inChild` runs first in the child, to let go of what must not outlive the parent. Throws Failure when
    // there can be no child.
    SegmentProcess(Recogniser &recogniser, const Sound &sound, const std::function<void()> &inChild);

    // Kills the group of the child when that still runs.
    ~SegmentProcess();
    SegmentProcess(const SegmentProcess &) = delete;
    SegmentProcess &operator=(const SegmentProcess &) = delete;

    // Waits for the end of the child, but no longer than that.
    State wait(int limitMs);

    // Can be read when `wait` has something to do.
    int descriptor() const { return m_answerPipe.get(); }

    // How much of the sound is done, from 0 to 100, as far as the recogniser tells.
    int percent() const { return m_percent; }

    // What was recognised, once Done. Throws the Failure that the child reported.
    Heard heard() const;

private:
    State reap();
    void takeProgress();

    FileDescriptor m_answerPipe;
    QByteArray m_answer;
    int m_percent = 0;
    pid_t m_child = -1;
};

} // namespace engine
