#include "list/Describe.h"
#include "list/RowLook.h"

#include "support/Support.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace tuppi;

namespace {

struct DescribeCase
{
    const char *name;
    QByteArray row;
    QByteArray latestJob;  ///< empty: none
    QString text;
    double progress;
};

class DescribeTable : public testing::TestWithParam<DescribeCase>
{
};

const QByteArray customModels = R"([{"id":"m1","name":"First"},{"id":"m2","name":"Second"},{"id":"m1","name":"Last"},{"id":"m3"}])";

TEST_P(DescribeTable, GivesTextAndProgress)
{
    const DescribeCase &given = GetParam();
    const auto latest = given.latestJob.isEmpty() ? std::nullopt : std::optional(test::object(given.latestJob));
    const Description description = Describe(test::object(given.row), latest, test::array(customModels));
    EXPECT_EQ(description.text, given.text);
    EXPECT_DOUBLE_EQ(description.progress, given.progress);
}

const DescribeCase localCases[]{
    {"Waiting", R"({"status":"waiting","waitPath":"/a"})", R"({"id":"a","progress":"5%"})", u"Waiting in line…"_s, -2},
    {"Starting", R"({"status":"starting"})", "", u"Copying the file…"_s, -1},
};

const DescribeCase workCases[]{
    {"OtherJobIsTheLatest", R"({"id":"a","status":"transcribing"})", R"({"id":"b","progress":"45%"})", u"Listening and writing down…"_s, -1},
    {"NoLatestJob", R"({"id":"a","status":"transcribing"})", "", u"Listening and writing down…"_s, -1},
    {"LatestJobWithoutId", R"({"id":"a","status":"transcribing"})", R"({"progress":"45%"})", u"Listening and writing down…"_s, -1},
    {"LatestJobWithIdNull", R"({"status":"transcribing"})", R"({"id":null,"progress":"45%"})", u"Listening and writing down…"_s, -1},
    {"ProgressNull", R"({"id":"a","status":"transcribing"})", R"({"id":"a","progress":null})", u"Listening and writing down…"_s, -1},
    {"ProgressMissing", R"({"id":"a","status":"transcribing"})", R"({"id":"a"})", u"Listening and writing down…"_s, -1},
    {"Percent", R"({"id":"a","status":"transcribing"})", R"({"id":"a","progress":"45%"})", u"Listening and writing down… 45%"_s, 0.45},
    {"PercentWithDecimals", R"({"id":"a","status":"transcribing"})", R"({"id":"a","progress":"45.5%"})", u"Listening and writing down… 45.5%"_s, 0.455},
    {"PercentAbove100IsNotClamped", R"({"id":"a","status":"transcribing"})", R"({"id":"a","progress":"120%"})", u"Listening and writing down… 120%"_s, 1.2},
    {"PercentWithoutNumber", R"({"id":"a","status":"transcribing"})", R"({"id":"a","progress":"abc%"})", u"Listening and writing down… abc%"_s, 0},
    {"PercentWithLeadingBlank", R"({"id":"a","status":"transcribing"})", R"({"id":"a","progress":" 45 %"})", u"Listening and writing down…  45 %"_s, 0.45},
    {"Count", R"({"id":"a","status":"transcribing"})", R"({"id":"a","progress":"12/40"})", u"Listening and writing down… 12/40"_s, 0.3},
    {"CountOfThreePieces", R"({"id":"a","status":"transcribing"})", R"({"id":"a","progress":"1/4/9"})", u"Listening and writing down… 1/4/9"_s, 0.25},
    {"CountOfZero", R"({"id":"a","status":"transcribing"})", R"({"id":"a","progress":"0/0"})", u"Listening and writing down… 0/0"_s, -1},
    {"CountWithoutNumbers", R"({"id":"a","status":"transcribing"})", R"({"id":"a","progress":"a/b"})", u"Listening and writing down… a/b"_s, -1},
    {"CountWithoutFirstNumber", R"({"id":"a","status":"transcribing"})", R"({"id":"a","progress":"/4"})", u"Listening and writing down… /4"_s, 0},
    {"NeitherPercentNorCount", R"({"id":"a","status":"transcribing"})", R"({"id":"a","progress":"soon"})", u"Listening and writing down… soon"_s, -1},
    {"QueuedHasNoSuffix", R"({"id":"a","status":"queued"})", R"({"id":"a","progress":"45%"})", u"Starting…"_s, 0.45},
    {"Analyzing", R"({"id":"a","status":"analyzing"})", R"({"id":"a","progress":"1/2"})", u"Writing the summary… 1/2"_s, 0.5},
    {"Cleaning", R"({"id":"a","status":"cleaning"})", R"({"id":"a","progress":"99%"})", u"Polishing the text… 99%"_s, 0.99},
    {"PausedWithoutProgress", R"({"id":"a","status":"transcribing","paused":true})", "", u"Paused — Listening and writing down…"_s, 0},
    {"PausedWithProgress", R"({"id":"a","status":"transcribing","paused":true})", R"({"id":"a","progress":"45%"})", u"Paused — Listening and writing down… 45%"_s, 0.45},
    {"PausedQueued", R"({"id":"a","status":"queued","paused":true})", "", u"Paused — Starting…"_s, 0},
    {"PausedAsANumber", R"({"id":"a","status":"queued","paused":1})", "", u"Paused — Starting…"_s, 0},
    {"PausedNull", R"({"id":"a","status":"queued","paused":null})", "", u"Starting…"_s, -1},
    {"PausedFalse", R"({"id":"a","status":"queued","paused":false})", "", u"Starting…"_s, -1},
};

const DescribeCase endCases[]{
    {"Cancelled", R"({"id":"a","status":"cancelled"})", R"({"id":"a","progress":"45%"})", u"Cancelled — press Start Again to continue where it stopped"_s, -2},
    {"Failed", R"({"id":"a","status":"failed","error":"disk full"})", "", u"Failed — disk full"_s, -2},
    {"FailedWithSilence", R"({"id":"a","status":"failed","error":"Запис містить тишу"})", "", u"Failed — No speech found in this recording"_s, -2},
    {"FailedWithAlmostSilence", R"({"id":"a","status":"failed","error":"Запис містить тишу."})", "", u"Failed — Запис містить тишу."_s, -2},
    {"FailedWithAnEmptyText", R"({"id":"a","status":"failed","error":""})", "", u"Failed — "_s, -2},
    {"FailedWithoutError", R"({"id":"a","status":"failed"})", "", u"Failed — unknown error"_s, -2},
    {"FailedWithErrorNull", R"({"id":"a","status":"failed","error":null})", "", u"Failed — unknown error"_s, -2},
    {"UnknownStatus", R"({"id":"a","status":"archived"})", "", u"archived"_s, -2},
    {"PausedAsAStatus", R"({"id":"a","status":"paused"})", "", u"paused"_s, -2},
    {"NoStatus", R"({"id":"a"})", "", u""_s, -2},
    {"StatusNull", R"({"id":"a","status":null})", "", u""_s, -2},
};

const DescribeCase readyCases[]{
    {"Full", R"({"status":"ready","recorded_at":"2025-03-14T10:22:33","duration_seconds":2520,"engine":"whisper-turbo"})", "", u"Done · 2025-03-14 10:22 · 42 min · Whisper Turbo"_s, -2},
    {"Nothing", R"({"status":"ready"})", "", u"Done ·  · 1 min"_s, -2},
    {"Nulls", R"({"status":"ready","recorded_at":null,"duration_seconds":null,"engine":null,"engine_choice":null,"language":null})", "", u"Done ·  · 1 min"_s, -2},
    {"NothingWithModelAndRussian", R"({"status":"ready","engine":"parakeet","language":"ru"})", "", u"Done ·  · 1 min · Parakeet · ⚠ Russian"_s, -2},
    {"DateOf16CharactersIsKept", R"({"status":"ready","recorded_at":"2025-03-14T10:22"})", "", u"Done · 2025-03-14 10:22 · 1 min"_s, -2},
    {"DateOf17CharactersIsCut", R"({"status":"ready","recorded_at":"2025-03-14T10:22Z"})", "", u"Done · 2025-03-14 10:22 · 1 min"_s, -2},
    {"ShortDate", R"({"status":"ready","recorded_at":"2025"})", "", u"Done · 2025 · 1 min"_s, -2},
    {"Seconds0", R"({"status":"ready","duration_seconds":0})", "", u"Done ·  · 1 min"_s, -2},
    {"Seconds20", R"({"status":"ready","duration_seconds":20})", "", u"Done ·  · 1 min"_s, -2},
    {"Seconds89", R"({"status":"ready","duration_seconds":89})", "", u"Done ·  · 1 min"_s, -2},
    {"Seconds90", R"({"status":"ready","duration_seconds":90})", "", u"Done ·  · 2 min"_s, -2},
    {"Seconds150", R"({"status":"ready","duration_seconds":150})", "", u"Done ·  · 3 min"_s, -2},
    {"SecondsAsText", R"({"status":"ready","duration_seconds":"150.0"})", "", u"Done ·  · 3 min"_s, -2},
    {"SecondsAsOtherText", R"({"status":"ready","duration_seconds":"long"})", "", u"Done ·  · 1 min"_s, -2},
    {"ParakeetAndWhisper", R"({"status":"ready","engine":"parakeet+whisper","engine_choice":"whisper-large"})", "", u"Done ·  · 1 min · Parakeet + Whisper"_s, -2},
    {"Parakeet", R"({"status":"ready","engine":"parakeet-v3","engine_choice":"whisper-large"})", "", u"Done ·  · 1 min · Parakeet"_s, -2},
    {"WhisperLargeByChoice", R"({"status":"ready","engine":"whisper","engine_choice":"whisper-large"})", "", u"Done ·  · 1 min · Whisper Large"_s, -2},
    {"WhisperLargeWithoutEngine", R"({"status":"ready","engine_choice":"whisper-large"})", "", u"Done ·  · 1 min · Whisper Large"_s, -2},
    {"AnyOtherEngineIsTurbo", R"({"status":"ready","engine":"other","engine_choice":"auto"})", "", u"Done ·  · 1 min · Whisper Turbo"_s, -2},
    {"EmptyEngineIsPresent", R"({"status":"ready","engine":""})", "", u"Done ·  · 1 min · Whisper Turbo"_s, -2},
    {"NoEngineNoName", R"({"status":"ready","engine_choice":"auto"})", "", u"Done ·  · 1 min"_s, -2},
    {"CustomModelByName", R"({"status":"ready","engine":"parakeet","engine_choice":"custom:m2"})", "", u"Done ·  · 1 min · Second"_s, -2},
    {"CustomModelLastMatchWins", R"({"status":"ready","engine_choice":"custom:m1"})", "", u"Done ·  · 1 min · Last"_s, -2},
    {"CustomModelRemovedSince", R"({"status":"ready","engine":"whisper","engine_choice":"custom:gone"})", "", u"Done ·  · 1 min · custom model"_s, -2},
    {"CustomModelWithoutName", R"({"status":"ready","engine_choice":"custom:m3"})", "", u"Done ·  · 1 min · custom model"_s, -2},
    {"Russian", R"({"status":"ready","language":"ru"})", "", u"Done ·  · 1 min · ⚠ Russian"_s, -2},
    {"OtherLanguage", R"({"status":"ready","language":"uk"})", "", u"Done ·  · 1 min"_s, -2},
    {"PlaceholdersInTheDate", R"({"status":"ready","recorded_at":"%@ %lu"})", "", u"Done · %@ %lu · 1 min"_s, -2},
};

INSTANTIATE_TEST_SUITE_P(Local, DescribeTable, testing::ValuesIn(localCases), test::caseName);
INSTANTIATE_TEST_SUITE_P(Work, DescribeTable, testing::ValuesIn(workCases), test::caseName);
INSTANTIATE_TEST_SUITE_P(End, DescribeTable, testing::ValuesIn(endCases), test::caseName);
INSTANTIATE_TEST_SUITE_P(Ready, DescribeTable, testing::ValuesIn(readyCases), test::caseName);

TEST(DetailTone, IsAttentionForFailedGoodForReadySlateForEverythingElse)
{
    EXPECT_EQ(DetailToneFor(u"failed"_s), DetailTone::Attention);
    EXPECT_EQ(DetailToneFor(u"ready"_s), DetailTone::Good);
    for (const QString &status : {u"cancelled"_s, u"transcribing"_s, u"waiting"_s, QString()})
        EXPECT_EQ(DetailToneFor(status), DetailTone::Slate) << status.toStdString();
}

struct SummaryCase
{
    const char *name;
    SummaryInput input;
    QString expected;
};

class SummaryTable : public testing::TestWithParam<SummaryCase>
{
};

TEST_P(SummaryTable, FirstRuleThatAppliesWins)
{
    EXPECT_EQ(SummaryLine(GetParam().input), GetParam().expected);
}

const QString broken = u"Tuppi's engine could not be found — please run the installer again."_s;

// In order: transient text, loaded, broken, rows, {active, paused, ready}, waiting.
const SummaryCase summaryCases[]{
    {"TransientBeforeEverything", {u"Saved"_s, false, true, 0, {}, 0}, u"Saved"_s},
    {"TransientBeforeWork", {u"Saved"_s, true, false, 3, {2, true, 1}, 1}, u"Saved"_s},
    {"BrokenBeforeTheFirstHistory", {{}, false, true, 0, {}, 0}, broken},
    {"BrokenBeforeTheFirstHistoryWithRows", {{}, false, true, 1, {}, 1}, broken},
    {"BrokenWithAFileWaiting", {{}, true, true, 3, {1, true, 1}, 1}, broken},
    {"TransientBeforeBroken", {u"Saved"_s, true, true, 3, {1, false, 1}, 1}, u"Saved"_s},
    {"BrokenAfterTheFirstHistoryIsNotSaid", {{}, true, true, 2, {0, false, 2}, 0}, u"2 transcripts"_s},
    {"BeforeTheFirstHistory", {{}, false, false, 0, {}, 0}, u"Preparing…"_s},
    {"LoadedAndEmpty", {{}, true, false, 0, {}, 0}, u"No transcriptions"_s},
    {"OnePausedRowAndOneWaiting", {{}, true, false, 2, {1, true, 0}, 1}, u"Paused"_s},
    {"TwoActiveRowsOneOfThemPaused", {{}, true, false, 3, {2, true, 0}, 1}, u"Working on 1 file · 1 waiting"_s},
    {"OneReady", {{}, true, false, 1, {0, false, 1}, 0}, u"1 transcript"_s},
    {"ManyReady", {{}, true, false, 12, {0, false, 12}, 0}, u"12 transcripts"_s},
    {"NoneReady", {{}, true, false, 2, {0, false, 0}, 0}, u"0 transcripts"_s},
    {"OneActive", {{}, true, false, 5, {1, false, 4}, 0}, u"Working on 1 file"_s},
    {"TwoActiveStillOneFile", {{}, true, false, 5, {2, false, 3}, 0}, u"Working on 1 file"_s},
    {"OnlyWaiting", {{}, true, false, 3, {0, false, 0}, 3}, u"Working on 1 file · 3 waiting"_s},
    {"WaitingBeforeTheFirstHistory", {{}, false, false, 1, {0, false, 0}, 1}, u"Working on 1 file · 1 waiting"_s},
};

INSTANTIATE_TEST_SUITE_P(Summary, SummaryTable, testing::ValuesIn(summaryCases), test::caseName);

} // namespace
