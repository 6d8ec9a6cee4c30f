#include "app/StartRecord.h"

#include "settings/Defaults.h"
#include "support/Support.h"

#include <QFile>
#include <QTemporaryDir>
#include <QUrl>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace tuppi;

namespace {

WaitingEntry entryOf(const QString &path)
{
    WaitingQueue queue;
    AddWaiting(queue, {path}, {u"whisper"_s, u"uk"_s, false, true});
    return queue.first();
}

History historyWith(const QStringList &ids)
{
    QJsonArray jobs;
    for (const QString &id : ids)
        jobs.append(QJsonObject{
            {u"id"_s, id}, {u"title"_s, u"x"_s}, {u"status"_s, u"ready"_s}, {u"hidden"_s, true}});
    return ArrangeHistory(jobs);
}

TEST(StartRecord, ComesBackFromTheStore)
{
    const QTemporaryDir folder;
    for (const std::optional<QStringList> &known :
         {std::optional<QStringList>(), std::optional(QStringList()), std::optional(QStringList{u"a"_s, u"b"_s})}) {
        {
            Defaults defaults(folder.filePath(u"settings.json"_s));
            ASSERT_TRUE(defaults.setValue(u"startInFlight"_s, StoredStart({entryOf(u"/x.m4a"_s), known, 1'800'000'000})));
        }
        const QString copy = folder.filePath(u"copy.json"_s);
        QFile::remove(copy);
        ASSERT_TRUE(QFile::copy(folder.filePath(u"settings.json"_s), copy));
        const auto restored = RestoredStart(Defaults(copy).value(u"startInFlight"_s));
        ASSERT_TRUE(restored);
        EXPECT_EQ(restored->entry, entryOf(u"/x.m4a"_s));
        EXPECT_EQ(restored->knownJobs, known);
        EXPECT_EQ(restored->startedAt, 1'800'000'000);
    }
}

TEST(StartRecord, HoldsTheWaitingEntrysFormAndTheKnownJobs)
{
    EXPECT_EQ(StoredStart({entryOf(u"/x.m4a"_s), QStringList{u"a"_s}}), (QVariantMap{{u"path"_s, u"/x.m4a"_s},
                                                                                     {u"engine"_s, u"whisper"_s},
                                                                                     {u"language"_s, u"uk"_s},
                                                                                     {u"speakers"_s, false},
                                                                                     {u"quick"_s, true},
                                                                                     {u"knownJobs"_s, QStringList{u"a"_s}}}));
    EXPECT_FALSE(StoredStart({entryOf(u"/x.m4a"_s), std::nullopt}).contains(u"knownJobs"_s));
}

TEST(StartRecord, StoredValueThatIsNoRecordIsNothing)
{
    for (const QVariant &stored : {QVariant(), QVariant(u"/x.m4a"_s), QVariant(5), QVariant(QVariantList{u"/x.m4a"_s}),
                                   QVariant(QVariantMap()), QVariant(QVariantMap{{u"path"_s, u""_s}}),
                                   QVariant(QVariantMap{{u"knownJobs"_s, QStringList{u"a"_s}}})})
        EXPECT_FALSE(RestoredStart(stored)) << testing::PrintToString(stored);
}

TEST(JobIds, AreThoseOfAllEntriesHiddenOnesToo)
{
    EXPECT_EQ(JobIds(historyWith({u"b"_s, u"a"_s})), (QStringList{u"b"_s, u"a"_s}));
    EXPECT_EQ(JobIds(historyWith({})), QStringList());
}

struct FateCase
{
    const char *name;
    std::optional<QStringList> known;
    QStringList listed;
    bool commandEnded;
    StartFate expected;
};

class FateTable : public testing::TestWithParam<FateCase>
{
};

TEST_P(FateTable, Fate)
{
    const StartRecord record{entryOf(u"/x.m4a"_s), GetParam().known};
    EXPECT_EQ(FateOfStart(record, historyWith(GetParam().listed), GetParam().commandEnded), GetParam().expected);
}

const FateCase fateCases[]{
    {"NewJobAfterTheCommand", QStringList{u"a"_s}, {u"a"_s, u"b"_s}, true, StartFate::Taken},
    {"NewJobBeforeTheCommandEnds", QStringList{u"a"_s}, {u"b"_s, u"a"_s}, false, StartFate::Taken},
    {"FirstJobOfAll", QStringList(), {u"a"_s}, true, StartFate::Taken},
    {"NoNewJobAfterTheCommand", QStringList{u"a"_s}, {u"a"_s}, true, StartFate::NotTaken},
    {"NoNewJobBeforeTheCommandEnds", QStringList{u"a"_s}, {u"a"_s}, false, StartFate::Unknown},
    {"KnownJobGone", QStringList{u"a"_s, u"b"_s}, {u"b"_s}, true, StartFate::NotTaken},
    {"OneGoneOneNew", QStringList{u"a"_s}, {u"b"_s}, true, StartFate::Taken},
    {"NothingKnownNothingListed", QStringList(), {}, true, StartFate::NotTaken},
    {"NoListToCompareWith", std::nullopt, {u"a"_s}, true, StartFate::NotTaken},
    {"NoListToCompareWithBeforeTheCommandEnds", std::nullopt, {u"a"_s}, false, StartFate::Unknown},
};

INSTANTIATE_TEST_SUITE_P(StartRecord, FateTable, testing::ValuesIn(fateCases), test::caseName);

struct OwnerCase
{
    const char *name;
    const char *jobs;
    StartFate expected;
    QString path = u"/talks/x.m4a"_s;
};

class OwnerTable : public testing::TestWithParam<OwnerCase>
{
};

TEST_P(OwnerTable, Fate)
{
    const StartRecord record{entryOf(GetParam().path), QStringList{u"a"_s}, 1'800'000'000}; // 2027-01-15T08:00:00Z
    const History history = ArrangeHistory(test::array(GetParam().jobs));
    EXPECT_EQ(FateOfStart(record, history, true), GetParam().expected);
}

const OwnerCase ownerCases[]{
    {"UnderWayWithTheFilesTitle", R"([{"id":"b","title":"x","status":"queued"}])", StartFate::Taken},
    {"UnderWayWithAnotherTitle", R"([{"id":"b","title":"y","status":"transcribing"}])", StartFate::NotTaken},
    {"BothUnderWay",
     R"([{"id":"c","title":"y","status":"transcribing"},{"id":"b","title":"x","status":"queued"}])", StartFate::Taken},
    {"ReadyWithTheFilesTitle", R"([{"id":"b","title":"x","status":"ready"}])", StartFate::Taken},
    {"FailedWithTheFilesTitle", R"([{"id":"b","title":"x","status":"failed"}])", StartFate::Taken},
    {"ReadyWithAnotherTitle", R"([{"id":"b","title":"The budget","status":"ready"}])", StartFate::NotTaken},
    {"FailedWithAnotherTitle", R"([{"id":"b","title":"y","status":"failed","call_dir":"/calls/x"}])", StartFate::NotTaken},
    {"CancelledWithAnotherTitle", R"([{"id":"b","title":"y","status":"cancelled"}])", StartFate::NotTaken},
    {"PausedWithAnotherTitle", R"([{"id":"b","title":"y","status":"paused"}])", StartFate::NotTaken},
    {"ReadyWithATitleOfItsOwnInTheFilesDir",
     R"([{"id":"b","title":"The budget","status":"ready","call_dir":"/calls/2027-01-15 09.00 x"}])", StartFate::Taken},
    {"ReadyWithATitleOfItsOwnInTheFilesSecondDir",
     R"j([{"id":"b","title":"The budget","status":"ready","call_dir":"/calls/2027-01-15 09.00 x (2)"}])j", StartFate::Taken},
    {"ReadyWithATitleOfItsOwnInTheDirOfANumberedFile",
     R"j([{"id":"b","title":"The budget","status":"ready","call_dir":"/calls/2027-01-15 09.00 x (2)"}])j", StartFate::Taken,
     u"/talks/x (2).m4a"_s},
    {"ReadyWithATitleOfItsOwnInADirOfTheTitleAlone",
     R"([{"id":"b","title":"The budget","status":"ready","call_dir":"/calls/x"}])", StartFate::Taken},
    {"ReadyWithATitleOfItsOwnInAnothersDir",
     R"([{"id":"b","title":"The budget","status":"ready","call_dir":"/x/2027-01-15 09.00 a x"}])", StartFate::NotTaken},
    {"KnownWithTheFilesTitle", R"([{"id":"a","title":"x","status":"queued"}])", StartFate::NotTaken},
    {"UnderWayWithTheNameTidiedUp", R"([{"id":"b","title":"a b at 10.22 AM","status":"queued"}])", StartFate::Taken,
     u"/talks/a  b at 10.22\u202fAM .m4a"_s},
    {"EndedInTheSecondOfTheStart",
     R"([{"id":"b","title":"x","status":"ready","completed_at":"2027-01-15T08:00:00Z"}])", StartFate::Taken},
    {"EndedBeforeTheStart",
     R"([{"id":"b","title":"x","status":"ready","completed_at":"2027-01-15T07:59:59Z"}])", StartFate::NotTaken},
};

INSTANTIATE_TEST_SUITE_P(StartRecord, OwnerTable, testing::ValuesIn(ownerCases), test::caseName);

} // namespace
