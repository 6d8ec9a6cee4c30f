#pragma once

#include "core/FileDescriptor.h"

#include <QByteArray>
#include <QStringList>

#include <sys/types.h>

namespace engine {

struct ProgramResult
{
    int exitStatus = -1; // also when it could not be started, was killed or took too long
    QByteArray output;
};

// A program that runs beside this one, with standard error discarded.
class ChildProgram
{
public:
    // `input` is what it reads from standard input. With any, it dies with this process.
    ChildProgram(const QString &program, const QStringList &arguments, const QByteArray &input = {});

    // Kills it when nobody has waited for its end.
    ~ChildProgram();
    ChildProgram(const ChildProgram &) = delete;
    ChildProgram &operator=(const ChildProgram &) = delete;

    // Waits that long for the end of its output; whether it has come.
    bool ended(int limitMs);

    // Waits for its end; kills it after the limit. Once only.
    ProgramResult finish(int limitMs);

private:
    FileDescriptor m_output;
    QByteArray m_read;
    pid_t m_child = -1;
};

} // namespace engine
