#pragma once

#include "core/FileDescriptor.h"

#include <QByteArray>
#include <QStringList>

#include <functional>
#include <sys/types.h>

namespace engine {

// After how long whisper-cli counts as stuck, in milliseconds.
struct WhisperPatience
{
    int idleMs = 2 * 60 * 1000;    // without a word, and without using the processor
    int silentMs = 30 * 60 * 1000; // without a word
};

// whisper-cli at work, below normal priority, in this process's own group. It dies with this process.
class WhisperProgram
{
public:
    // Throws Failure when there can be no child.
    WhisperProgram(const QString &program, const QStringList &arguments);

    // Kills it when it still runs.
    ~WhisperProgram();
    WhisperProgram(const WhisperProgram &) = delete;
    WhisperProgram &operator=(const WhisperProgram &) = delete;

    // Waits for its end and gives the exit status, 127 when it could not be started. Throws RecogniserBroke
    // when it was killed or is stuck.
    int finish(const WhisperPatience &patience, const std::function<void(int percent)> &progress);

private:
    bool ended(int &status);
    bool readMessages();

    FileDescriptor m_messages;
    QByteArray m_written; // the end of what it has said
    pid_t m_child = -1;
};

} // namespace engine
