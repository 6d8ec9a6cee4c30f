#include "engine/EngineCommands.h"

#include "support/Support.h"

#include <QUrl>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace tuppi;

namespace {

struct CommandCase
{
    const char *name;
    QStringList built;
    QStringList expected;
};

class CommandTable : public testing::TestWithParam<CommandCase>
{
};

TEST_P(CommandTable, GivesTheExactList)
{
    EXPECT_EQ(GetParam().built, GetParam().expected);
}

QVariantMap entry(const QString &engine, const QVariant &language, bool speakers, bool quick)
{
    QVariantMap entry{{u"url"_s, QUrl::fromLocalFile(u"/r/a b?#%20.m4a"_s)},
                      {u"engine"_s, engine},
                      {u"speakers"_s, speakers},
                      {u"quick"_s, quick}};
    if (language.isValid())
        entry.insert(u"language"_s, language);
    return entry;
}

const QString recording = u"/r/a b?#%20.m4a"_s;

const CommandCase commandCases[]{
    {"Resume", command::resume(), {u"resume"_s}},
    {"History", command::history(), {u"history"_s, u"--json"_s}},
    {"Status", command::status(), {u"status"_s, u"--json"_s}},
    {"ProcessWithSpeakers", command::process(entry(u"whisper"_s, u"uk"_s, true, false)),
     {u"process"_s, recording, u"--background"_s, u"--engine"_s, u"whisper"_s, u"--language"_s, u"uk"_s, u"--speakers"_s}},
    {"ProcessWithoutSpeakers", command::process(entry(u"auto"_s, u"en"_s, false, false)),
     {u"process"_s, recording, u"--background"_s, u"--engine"_s, u"auto"_s, u"--language"_s, u"en"_s, u"--no-speakers"_s}},
    {"LanguageAutoIsTwoArguments", command::process(entry(u"auto"_s, u"auto"_s, true, false)),
     {u"process"_s, recording, u"--background"_s, u"--engine"_s, u"auto"_s, u"--language"_s, u"auto"_s, u"--speakers"_s}},
    {"LanguageAbsentIsAuto", command::process(entry(u"custom:m1"_s, {}, true, false)),
     {u"process"_s, recording, u"--background"_s, u"--engine"_s, u"custom:m1"_s, u"--language"_s, u"auto"_s, u"--speakers"_s}},
    {"QuickHasTheSpeakersFlagTenth", command::process(entry(u"parakeet"_s, u"en"_s, true, true)),
     {u"process"_s, recording, u"--background"_s, u"--engine"_s, u"parakeet"_s, u"--language"_s, u"en"_s, u"--no-clean"_s,
      u"--no-analyze"_s, u"--speakers"_s}},
    {"QuickWithoutSpeakersEndsInTheThreeRefusals", command::process(entry(u"auto"_s, u"ru"_s, false, true)),
     {u"process"_s, recording, u"--background"_s, u"--engine"_s, u"auto"_s, u"--language"_s, u"ru"_s, u"--no-clean"_s,
      u"--no-analyze"_s, u"--no-speakers"_s}},
    {"Models", command::models(), {u"models"_s, u"--json"_s}},
    {"AddModel", command::addModel(u"My model"_s, u"whisper"_s, u"a/b"_s),
     {u"models"_s, u"add"_s, u"--name=My model"_s, u"--kind=whisper"_s, u"--repo=a/b"_s, u"--json"_s}},
    {"AddModelWithEmptyFields", command::addModel({}, u"parakeet"_s, {}),
     {u"models"_s, u"add"_s, u"--name="_s, u"--kind=parakeet"_s, u"--repo="_s, u"--json"_s}},
    {"RemoveModel", command::removeModel(u"m1"_s), {u"models"_s, u"remove"_s, u"--id=m1"_s, u"--json"_s}},
    {"UseTextModel", command::useTextModel(u"qwen3:8b"_s), {u"models"_s, u"text-model"_s, u"--name=qwen3:8b"_s, u"--json"_s}},
    {"Settings", command::settings(), {u"settings"_s, u"--json"_s}},
    {"SetLibrary", command::setLibrary(u"/a b/c"_s), {u"settings"_s, u"--library=/a b/c"_s, u"--json"_s}},
    {"Doctor", command::doctor(), {u"doctor"_s, u"--json"_s}},
    {"CopyTranscript", command::copyTranscript(u"j1"_s), {u"copy"_s, u"transcript"_s, u"j1"_s}},
    {"Rename", command::rename(u"j1"_s, u"--all \"x\""_s), {u"rename"_s, u"j1"_s, u"--"_s, u"--all \"x\""_s}},
    {"Pause", command::pause(u"j1"_s), {u"pause"_s, u"j1"_s}},
    {"Continue", command::resumeJob(u"j1"_s), {u"continue"_s, u"j1"_s}},
    {"Cancel", command::cancel(u"j1"_s), {u"cancel"_s, u"j1"_s}},
    {"Retry", command::retry(u"j1"_s), {u"retry"_s, u"j1"_s}},
    {"HideOne", command::hide({u"j1"_s}), {u"hide"_s, u"j1"_s}},
    {"HideMany", command::hide({u"j1"_s, u"j2"_s, u"j3"_s}), {u"hide"_s, u"j1"_s, u"j2"_s, u"j3"_s}},
    {"UnhideAll", command::unhideAll(), {u"hide"_s, u"--all"_s, u"--undo"_s}},
    {"RenameSpeaker", command::renameSpeaker(u"j1"_s, u"Speaker 1"_s, u"Оля"_s),
     {u"speaker"_s, u"j1"_s, u"--rename"_s, u"--old=Speaker 1"_s, u"--new=Оля"_s, u"--json"_s}},
    {"SetLineSpeaker", command::setLineSpeaker(u"j1"_s, 12, u"Оля"_s),
     {u"speaker"_s, u"j1"_s, u"12"_s, u"--json"_s, u"--name=Оля"_s}},
    {"SetLineSpeakerToAnEmptyName", command::setLineSpeaker(u"j1"_s, 0, u""_s),
     {u"speaker"_s, u"j1"_s, u"0"_s, u"--json"_s, u"--name="_s}},
    {"ClearLineSpeaker", command::setLineSpeaker(u"j1"_s, 3, std::nullopt),
     {u"speaker"_s, u"j1"_s, u"3"_s, u"--json"_s, u"--none"_s}},
    {"EditLine", command::editLine(u"j1"_s, 4, u"-- a\nb"_s),
     {u"edit"_s, u"j1"_s, u"4"_s, u"--json"_s, u"--"_s, u"-- a\nb"_s}},
    {"SplitLine", command::splitLine(u"j1"_s, 5, 1234), {u"split"_s, u"j1"_s, u"5"_s, u"1234"_s, u"--json"_s}},
    {"JoinWithLineAbove", command::joinWithLineAbove(u"j1"_s, 6),
     {u"split"_s, u"j1"_s, u"6"_s, u"--join"_s, u"--json"_s}},
};

INSTANTIATE_TEST_SUITE_P(EngineCommands, CommandTable, testing::ValuesIn(commandCases), test::caseName);

TEST(EngineCommands, TheQueriesOfAPollMayTakeAMinute)
{
    EXPECT_EQ(command::queryTimeoutSeconds, 60);
}

} // namespace
