#include "commands/Command.h"

#include "core/Failure.h"
#include "models/ModelSyntax.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <new>
#include <vector>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

std::vector<Command> jobCommands()
{
    return {
        {u"process",
         u"Take a recording and transcribe it",
         {u"process FILE [--background] [--engine ENGINE] [--language LANGUAGE] [--no-clean] [--no-analyze] "
          u"[--speakers|--no-speakers]",
          1,
          1,
          {{u"--background"},
           {u"--engine", Option::SeparateValue},
           {u"--language", Option::SeparateValue},
           {u"--no-clean"},
           {u"--no-analyze"},
           {u"--speakers"},
           {u"--no-speakers"}}},
         &commands::process},
        {u"history",
         u"List every transcription, newest first",
         {u"history [--json]", 0, 0, {{u"--json"}}},
         &commands::history},
        {u"status",
         u"Show the current transcription and the transcripts folder",
         {u"status [--json]", 0, 0, {{u"--json"}}},
         &commands::status},
        {u"resume", u"Go on with whatever is unfinished", {u"resume", 0, 0, {}}, &commands::resume},
        {u"pause", u"Pause a transcription", {u"pause ID", 1, 1, {}}, &commands::pause},
        {u"continue", u"Go on with a paused transcription", {u"continue ID", 1, 1, {}}, &commands::resumeOne},
        {u"cancel",
         u"Stop a transcription; what is done is kept",
         {u"cancel ID", 1, 1, {}},
         &commands::cancel},
        {u"retry",
         u"Start a failed or cancelled transcription again where it stopped",
         {u"retry ID", 1, 1, {}},
         &commands::retry},
    };
}

std::vector<Command> transcriptCommands()
{
    return {
        {u"rename", u"Give a transcript another title", {u"rename ID -- TITLE", 2, 2, {}}, &commands::rename},
        {u"hide",
         u"Take finished transcriptions off the list, or put them back; nothing is deleted",
         {u"hide ID… [--undo] | hide --all [--undo]", 0, -1, {{u"--all"}, {u"--undo"}}},
         &commands::hide},
        {u"copy",
         u"Put the text of a transcript on the clipboard",
         {u"copy transcript ID", 2, 2, {}},
         &commands::copy},
        {u"speaker",
         u"Name the speaker of one line, or rename a speaker everywhere",
         {u"speaker ID LINE --name=NAME|--none [--json] | speaker ID --rename --old=NAME --new=NAME [--json]",
          1,
          2,
          {{u"--name", Option::Value},
           {u"--none"},
           {u"--rename"},
           {u"--old", Option::Value},
           {u"--new", Option::Value},
           {u"--json"}}},
         &commands::speaker},
        {u"edit",
         u"Correct the text of a line",
         {u"edit ID LINE [--json] -- TEXT", 3, 3, {{u"--json"}}},
         &commands::edit},
        {u"split",
         u"Split a line behind so many characters, or join it with the one above",
         {u"split ID LINE POSITION [--json] | split ID LINE --join [--json]",
          2,
          3,
          {{u"--join"}, {u"--json"}}},
         &commands::split},
    };
}

std::vector<Command> installationCommands()
{
    return {
        {u"models",
         u"List, add and remove speech models; choose the text model. Only “add” uses the internet",
         modelsSyntax(),
         &commands::models},
        {u"settings",
         u"Show or change the transcripts folder",
         {u"settings [--library=FOLDER] [--json]", 0, 0, {{u"--library", Option::Value}, {u"--json"}}},
         &commands::settings},
        {u"doctor",
         u"Check that everything needed is there",
         {u"doctor [--json]", 0, 0, {{u"--json"}}},
         &commands::doctor},
    };
}

} // namespace

std::span<const Command> allCommands()
{
    static const std::vector<Command> table = [] {
        std::vector<Command> all;
        for (const std::vector<Command> &part : {jobCommands(), transcriptCommands(), installationCommands()})
            all.insert(all.end(), part.begin(), part.end());
        return all;
    }();
    return table;
}

void print(const QByteArray &bytes)
{
    if (std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout) != size_t(bytes.size()))
        throw systemFailure(u"The answer could not be written"_s, errno);
}

void printLine(const QString &line)
{
    print(line.toUtf8() + '\n');
}

namespace {

int showHelp()
{
    printLine(u"Usage: call COMMAND [ARGUMENTS]\n"_s);
    for (const Command &command : allCommands())
        printLine(u"  "_s + command.syntax.usage.toString() + u"\n      "_s + command.help.toString());
    return 0;
}

int dispatch(const QStringList &arguments)
{
    if (arguments.isEmpty())
        throw usageFailure(u"A command is missing. See: call --help"_s);
    const QString &name = arguments.first();
    if (name == u"--help" || name == u"help")
        return showHelp();
    if (name == u"--version") {
        printLine(u"Tuppi engine " TUPPI_VERSION ""_s);
        return 0;
    }
    const auto command = std::ranges::find(allCommands(), name, [](const Command &c) { return c.name; });
    if (command == allCommands().end())
        throw usageFailure(u"“"_s + name + u"” is not a command. See: call --help"_s);
    return command->run(readArguments(command->syntax, arguments.mid(1)));
}

int report(const QString &sentence, int exitStatus)
{
    std::fflush(stdout);
    const QByteArray line = "Error: " + sentence.toUtf8() + '\n';
    std::fwrite(line.constData(), 1, size_t(line.size()), stderr);
    return exitStatus;
}

} // namespace

int runCommandLine(const QStringList &arguments)
{
    try {
        const int exitStatus = dispatch(arguments);
        if (std::fflush(stdout) != 0)
            throw systemFailure(u"The answer could not be written"_s, errno);
        return exitStatus;
    } catch (const Failure &failure) {
        return report(failure.sentence(), failure.exitStatus());
    } catch (const std::bad_alloc &) {
        return report(u"There is not enough memory."_s, 1);
    }
}

} // namespace engine
