#include "actions/Removal.h"

#include "support/Support.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace tuppi;

namespace {

/// As jobs of a history, where every job has an id of some kind.
JobList rowsOf(const QByteArray &json)
{
    QJsonArray jobs;
    for (const QJsonValue &value : test::array(json)) {
        QJsonObject job = value.toObject();
        if (job.value("id"_L1).isUndefined() || job.value("id"_L1).isNull())
            job.insert("id"_L1, 0);
        jobs.append(job);
    }
    return ArrangeHistory(jobs).entries;
}

struct RowCase
{
    const char *name;
    QByteArray row;
    bool removable;
};

class IsRemovableTable : public testing::TestWithParam<RowCase>
{
};

TEST_P(IsRemovableTable, TellsWhichRowsCanLeave)
{
    EXPECT_EQ(IsRemovable(test::object(GetParam().row)), GetParam().removable);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, IsRemovableTable,
    testing::Values(RowCase{"ready", R"({"id":"a","status":"ready"})", true},
                    RowCase{"failed", R"({"id":"a","status":"failed"})", true},
                    RowCase{"cancelled", R"({"id":"a","status":"cancelled"})", true},
                    RowCase{"unknown", R"({"id":"a","status":"elsewhere"})", true},
                    RowCase{"noStatus", R"({"id":"a","status":null})", true},
                    RowCase{"queued", R"({"id":"a","status":"queued"})", false},
                    RowCase{"transcribing", R"({"id":"a","status":"transcribing"})", false},
                    RowCase{"analyzing", R"({"id":"a","status":"analyzing"})", false},
                    RowCase{"cleaning", R"({"id":"a","status":"cleaning"})", false},
                    RowCase{"pausedWork", R"({"id":"a","status":"cleaning","paused":true})", false},
                    RowCase{"waiting", R"({"local":true,"waitPath":"/a","status":"waiting"})", false},
                    RowCase{"starting", R"({"local":true,"status":"starting"})", false}, RowCase{"none", "{}", false}),
    test::caseName);

TEST(FinishedRows, AreTheRemovableOnesInTheirOrder)
{
    Rows rows;
    rows.starting = true;
    AddWaiting(rows.waiting, {u"/a.m4a"_s}, {});
    EXPECT_TRUE(FinishedRows(rows).isEmpty());
    rows.jobs = rowsOf(R"([{"id":"a","status":"queued"},{"id":"b","status":"failed"},{"id":"c","status":"ready"},
        {"id":"d","status":"cancelled"}])");
    EXPECT_EQ(IdsOf(FinishedRows(rows)), (QStringList{u"b"_s, u"c"_s, u"d"_s}));
}

TEST(IdsOf, LeavesOutRowsWithoutAnId)
{
    EXPECT_EQ(IdsOf(rowsOf(R"([{"id":"b"},{"title":"x"},{"id":null},{"id":7},{"id":""},{"id":"a"}])")),
              (QStringList{u"b"_s, u"a"_s}));
    EXPECT_EQ(IdsOf({}), QStringList());
}

TEST(FoldersOf, AreThoseOfTheRowsThatHaveOne)
{
    const QList<DoomedFolder> folders = FoldersOf(rowsOf(
        R"([{"call_dir":"/c/One","title":"Erste"},{"title":"x"},{"call_dir":null},{"call_dir":"/c/Two/","title":null},
            {"call_dir":"/c/Three"},{"call_dir":"/c/Four","title":""}])"));
    EXPECT_EQ(folders, (QList<DoomedFolder>{{u"/c/One"_s, u"Erste"_s},
                                            {u"/c/Two/"_s, u"Two"_s},
                                            {u"/c/Three"_s, u"Three"_s},
                                            {u"/c/Four"_s, QString()}}));
}

class AtHome : public testing::Test
{
protected:
    test::HomeFolder m_home{u"/tmp/tuppi no home"_s};
};

TEST_F(AtHome, OnlyWhatCanBeATranscriptIsOne)
{
    const struct
    {
        QString path;
        QString library;
        bool is;
    } cases[]{
        {u"/tmp/tuppi no home/Documents/CallsRawFiles/2025"_s, {}, true},
        {u"/elsewhere/2025"_s, {}, true},
        {u"/tmp/tuppi no home/Documents/CallsRawFiles"_s, {}, false},
        {u"/tmp/tuppi no home/Documents/CallsRawFiles/"_s, {}, false},
        {u"/tmp/tuppi no home/Documents/CallsRawFiles/2025/.."_s, {}, false},
        {u"/tmp/tuppi no home/Documents"_s, {}, false},
        {u"/tmp/tuppi no home/Documents"_s, u"/data/library"_s, true},
        {u"/tmp/tuppi no home"_s, u"/data/library"_s, false},
        {u"/tmp"_s, u"/data/library"_s, false},
        {u"/data"_s, u"/data/library"_s, false},
        {u"/data/library"_s, u"/data/library/"_s, false},
        {u"/data/library/2025"_s, u"/data/library"_s, true},
        {u"/data/library 2"_s, u"/data/library"_s, true},
        {u"/"_s, u"/data/library"_s, false},
        {u"2025"_s, {}, false},
        {u"~"_s, {}, false},
        {QString(), {}, false},
    };
    for (const auto &given : cases)
        EXPECT_EQ(IsTranscriptFolder(given.path, given.library), given.is)
            << qPrintable(given.path) << " in " << qPrintable(given.library);
}

TEST_F(AtHome, TheLibraryIsWhatTheEngineToldElseTheUsualOne)
{
    EXPECT_EQ(LibraryPath(u"/data/library"_s), u"/data/library"_s);
    EXPECT_EQ(LibraryPath({}), u"/tmp/tuppi no home/Documents/CallsRawFiles"_s);
}

TEST_F(AtHome, TheDetailNamesTheLibraryWithATilde)
{
    const auto place = [](const QString &library) {
        const QString detail = RemoveDetail(library);
        const QString before = u"Remove from List hides it here; the transcript stays in "_s;
        const QString after = u" (File › Show Hidden Transcripts brings it back).\n\nMove to Trash puts the "
                              u"transcript folder in the Trash — you can still restore it from there. Your "
                              u"original audio files are never touched."_s;
        EXPECT_TRUE(detail.startsWith(before) && detail.endsWith(after)) << qPrintable(detail);
        return detail.mid(before.size(), detail.size() - before.size() - after.size());
    };
    EXPECT_EQ(place({}), u"~/Documents/CallsRawFiles"_s);
    EXPECT_EQ(place(u"/tmp/tuppi no home/Calls 100%"_s), u"~/Calls 100%"_s);
    EXPECT_EQ(place(u"/tmp/tuppi no home"_s), u"~"_s);
    EXPECT_EQ(place(u"/tmp/tuppi no homes/Calls"_s), u"/tmp/tuppi no homes/Calls"_s);
    qputenv("HOME", "/");
    EXPECT_EQ(place(u"/srv/calls"_s), u"/srv/calls"_s);
}

TEST(Titles, NameTheRowOrSayWhatItIs)
{
    const QJsonObject named = test::object(R"({"title":"100% “%@”"})");
    const QJsonObject unnamed = test::object(R"({"title":null})");
    EXPECT_EQ(CancelTitle(named), u"Cancel “100% “%@””?"_s);
    EXPECT_EQ(CancelTitle(unnamed), u"Cancel “this transcription”?"_s);
    EXPECT_EQ(RemoveTitle(named), u"Remove “100% “%@””?"_s);
    EXPECT_EQ(RemoveTitle(unnamed), u"Remove “this transcript”?"_s);
    EXPECT_EQ(ClearListTitle(1), u"Clear 1 finished transcript from the list?"_s);
    EXPECT_EQ(ClearListTitle(2), u"Clear all 2 finished transcripts from the list?"_s);
    EXPECT_EQ(ClearListTitle(10'000), u"Clear all 10000 finished transcripts from the list?"_s);
    EXPECT_EQ(TrashTitle(3), u"Move 3 transcript folders to the Trash?"_s);
    EXPECT_EQ(TrashFailureLine({u"/c/a"_s, u"50%: %@"_s}, u"why %@"_s), u"50%: %@: why %@"_s);
}

} // namespace
