#pragma once

#include <QByteArray>
#include <QStringList>

namespace engine {

struct ProgramResult
{
    int exitStatus = -1; // also when it could not be started, was killed or took too long
    QByteArray output;
};

// Runs a program to its end with nothing on standard input and standard error discarded; kills it after the
// limit.
ProgramResult runProgram(const QString &program, const QStringList &arguments, int limitMs);

} // namespace engine
