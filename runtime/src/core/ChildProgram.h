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

// A program that runs beside this one, with nothing on standard input and standard error discarded.
class ChildProgram
{
public:
    ChildProgram(const QString &program, const QStringList &arguments);

    // Kills it when nobody has waited for its end.
    ~ChildProgram();
    ChildProgram(const ChildProgram &) = delete;
    ChildProgram &operator=(const ChildProgram &) = delete;

    // Waits for its end; kills it after the limit. Once only.
    ProgramResult finish(int limitMs);

private:
    FileDescriptor m_output;
    pid_t m_child = -1;
};

// Runs a program to its end with nothing on standard input and standard error discarded; kills it after the
// limit.
ProgramResult runProgram(const QString &program, const QStringList &arguments, int limitMs);

} // namespace engine
