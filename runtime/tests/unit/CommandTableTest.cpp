#include "commands/Command.h"

#include "Support.h"

#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

const Command *commandNamed(const QString &name)
{
    const auto found =
        std::ranges::find(allCommands(), name, [](const Command &command) { return command.name; });
    return found == allCommands().end() ? nullptr : &*found;
}

} // namespace

// Every list of arguments that the application sends, as it sends it.
TEST(CommandTable, readsWhatTheApplicationSends)
{
    const std::vector<QStringList> sent = {
        {u"resume"_s},
        {u"history"_s, u"--json"_s},
        {u"status"_s, u"--json"_s},
        {u"process"_s, u"/a b.m4a"_s, u"--background"_s, u"--engine"_s, u"auto"_s, u"--language"_s, u"auto"_s,
         u"--no-clean"_s, u"--no-analyze"_s, u"--no-speakers"_s},
        {u"process"_s, u"/a.m4a"_s, u"--background"_s, u"--engine"_s, u"custom:7"_s, u"--language"_s, u"uk"_s,
         u"--speakers"_s},
        {u"settings"_s, u"--json"_s},
        {u"settings"_s, u"--library=/some folder"_s, u"--json"_s},
        {u"models"_s, u"--json"_s},
        {u"models"_s, u"add"_s, u"--name=A name"_s, u"--kind=whisper"_s, u"--repo=owner/name"_s, u"--json"_s},
        {u"models"_s, u"remove"_s, u"--id=id"_s, u"--json"_s},
        {u"models"_s, u"text-model"_s, u"--name=qwen3:8b"_s, u"--json"_s},
        {u"doctor"_s, u"--json"_s},
        {u"pause"_s, u"id"_s},
        {u"continue"_s, u"id"_s},
        {u"cancel"_s, u"id"_s},
        {u"retry"_s, u"id"_s},
        {u"copy"_s, u"transcript"_s, u"id"_s},
        {u"rename"_s, u"id"_s, u"--"_s, u"--title"_s},
        {u"hide"_s, u"id"_s, u"other"_s},
        {u"hide"_s, u"--all"_s, u"--undo"_s},
        {u"speaker"_s, u"id"_s, u"--rename"_s, u"--old=Speaker 1"_s, u"--new=--x"_s, u"--json"_s},
        {u"speaker"_s, u"id"_s, u"4"_s, u"--json"_s, u"--name="_s},
        {u"speaker"_s, u"id"_s, u"-1"_s, u"--json"_s, u"--none"_s},
        {u"edit"_s, u"id"_s, u"4"_s, u"--json"_s, u"--"_s, u"--x"_s},
        {u"edit"_s, u"id"_s, u"4"_s, u"--json"_s, u"--"_s, u""_s},
        {u"split"_s, u"id"_s, u"4"_s, u"-7"_s, u"--json"_s},
        {u"split"_s, u"id"_s, u"4"_s, u"--join"_s, u"--json"_s},
    };
    for (const QStringList &arguments : sent) {
        const Command *command = commandNamed(arguments.first());
        ASSERT_NE(command, nullptr) << arguments.first().toStdString();
        EXPECT_NO_THROW(readArguments(command->syntax, arguments.mid(1)))
            << arguments.join(u' ').toStdString();
    }
}

TEST(CommandTable, namesAreUniqueAndEveryCommandIsExplained)
{
    QSet<QStringView> names;
    for (const Command &command : allCommands()) {
        EXPECT_FALSE(names.contains(command.name));
        names.insert(command.name);
        EXPECT_TRUE(command.syntax.usage.startsWith(command.name));
        EXPECT_FALSE(command.help.isEmpty());
        for (const Option &option : command.syntax.options)
            EXPECT_TRUE(command.syntax.usage.contains(option.name)) << option.name.toString().toStdString();
    }
}

TEST(CommandTable, wrongWordsEndWithTwoOnStandardError)
{
    for (const QStringList &arguments :
         {QStringList{}, QStringList{u"bogus"_s}, QStringList{u"history"_s, u"x"_s},
          QStringList{u"process"_s, u"/x"_s, u"--engine"_s, u"bogus"_s, u"--what"_s}}) {
        testing::internal::CaptureStderr();
        EXPECT_EQ(runCommandLine(arguments), 2);
        const std::string told = testing::internal::GetCapturedStderr();
        EXPECT_EQ(told.rfind("Error: ", 0), 0U) << told;
        EXPECT_EQ(std::ranges::count(told, '\n'), 1) << told;
    }
}

} // namespace engine
