#pragma once

#include "core/Arguments.h"

#include <QByteArray>
#include <QString>

#include <span>

namespace engine {

// One word of the command line. `run` returns the exit status and throws Failure for everything that goes
// wrong.
struct Command
{
    QStringView name;
    QStringView help; // one line
    Syntax syntax;
    int (*run)(const Arguments &arguments);
};

// Every command, in the order in which the help shows them.
std::span<const Command> allCommands();

// Runs the whole command line (without the program's name) and reports a failure on standard error.
int runCommandLine(const QStringList &arguments);

// Standard output, all of it, or a Failure.
void print(const QByteArray &bytes);
void printLine(const QString &line);

namespace commands {
int process(const Arguments &arguments);
int history(const Arguments &arguments);
int status(const Arguments &arguments);
int resume(const Arguments &arguments);
int pause(const Arguments &arguments);
int resumeOne(const Arguments &arguments); // "continue"
int cancel(const Arguments &arguments);
int retry(const Arguments &arguments);
int rename(const Arguments &arguments);
int hide(const Arguments &arguments);
int copy(const Arguments &arguments);
int speaker(const Arguments &arguments);
int edit(const Arguments &arguments);
int split(const Arguments &arguments);
int models(const Arguments &arguments);
int settings(const Arguments &arguments);
int doctor(const Arguments &arguments);
} // namespace commands

} // namespace engine
