#include "list/Rows.h"

#include "support/Support.h"

#include <QUrl>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace tuppi;

namespace {

JobsState stateOf(const QByteArray &history, const QStringList &waiting = {})
{
    JobsState jobs;
    jobs.loaded = true;
    jobs.history = std::make_shared<const History>(ArrangeHistory(test::array(history)));
    AddWaiting(jobs.waiting, waiting, {u"auto"_s, u"en"_s, true, false});
    return jobs;
}

QStringList keys(const JobsState &jobs)
{
    QStringList keys;
    const Rows rows = BuildRows(jobs).rows;
    for (qsizetype index = 0; index < rows.size(); ++index) {
        EXPECT_EQ(rows.keyAt(index), RowKey(rows.at(index)));
        EXPECT_EQ(rows.titleAt(index), rows.at(index).value(u"title"_s).toString());
        keys.append(rows.keyAt(index));
    }
    return keys;
}

TEST(RowKey, IsTheIdElseThePathElseStarting)
{
    EXPECT_EQ(RowKey(test::object(R"({"id":"a","waitPath":"/x"})")), u"a"_s);
    EXPECT_EQ(RowKey(test::object(R"({"waitPath":"/x"})")), u"wait:/x"_s);
    EXPECT_EQ(RowKey(test::object(R"({"waitPath":""})")), u"wait:"_s);
    EXPECT_EQ(RowKey(test::object(R"({"id":null,"waitPath":"/x"})")), u"wait:/x"_s);
    EXPECT_EQ(RowKey(test::object(R"({"id":5})")), u"starting"_s);
    EXPECT_EQ(RowKey(test::object("{}")), u"starting"_s);
}

TEST(BuildRows, StartingThenWaitingThenUnderWayThenTheRest)
{
    JobsState jobs = stateOf(
        R"([{"id":"r1","status":"ready"},{"id":"a1","status":"queued"},{"id":"f1","status":"failed"},{"id":"a2","status":"cleaning"}])",
        {u"/b.m4a"_s, u"/a.m4a"_s});
    jobs.starting = true;
    EXPECT_EQ(keys(jobs), (QStringList{u"starting"_s, u"wait:/b.m4a"_s, u"wait:/a.m4a"_s, u"a1"_s, u"a2"_s, u"r1"_s, u"f1"_s}));
}

TEST(BuildRows, StartingRowHasExactlyItsThreeFields)
{
    JobsState jobs;
    jobs.starting = true;
    const RowList list = BuildRows(jobs);
    ASSERT_EQ(list.rows.size(), 1);
    EXPECT_EQ(list.rows.first(), test::object(R"({"local":true,"title":"Preparing…","status":"starting"})"));
    EXPECT_EQ(list.counts.active, 1);
}

TEST(BuildRows, WaitingRowHasItsIndexPathAndTheNameWithoutExtension)
{
    const RowList list = BuildRows(stateOf("[]", {u"/x/a.m4a"_s, u"/x/board. 12.03.M4A"_s}));
    ASSERT_EQ(list.rows.size(), 2);
    EXPECT_EQ(list.rows.at(1),
              test::object(R"({"local":true,"waitIndex":1,"waitPath":"/x/board. 12.03.M4A","status":"waiting","title":"board. 12.03"})"));
}

TEST(BuildRows, WaitingEntryWithoutAFileHasAnEmptyPath)
{
    JobsState jobs;
    jobs.waiting.append(WaitingEntry{{u"engine"_s, u"auto"_s}});
    const RowList list = BuildRows(jobs);
    ASSERT_EQ(list.rows.size(), 1);
    EXPECT_EQ(list.rows.first().value(u"waitPath"_s), QJsonValue(u""_s));
}

TEST(BuildRows, EngineRowIsTheHistoryEntryUnchanged)
{
    const QByteArray entry = R"({"id":"a","status":"ready","title":"t","extra":{"x":[1,null]},"error":null})";
    const RowList list = BuildRows(stateOf("[" + entry + "]"));
    ASSERT_EQ(list.rows.size(), 1);
    EXPECT_EQ(list.rows.first(), test::object(entry));
}

TEST(BuildRows, HiddenJobIsListedWhileTranscribingAndGoneOnceReady)
{
    EXPECT_EQ(keys(stateOf(R"([{"id":"a","status":"transcribing","hidden":true}])")), QStringList{u"a"_s});
    EXPECT_EQ(keys(stateOf(R"([{"id":"a","status":"ready","hidden":true}])")), QStringList());
}

TEST(BuildRows, EntryWithoutIdNeverBecomesARow)
{
    EXPECT_EQ(keys(stateOf(R"([{"status":"transcribing"},{"id":null,"status":"ready"}])")), QStringList());
}

TEST(BuildRows, BeforeTheFirstHistoryOnlyLocalRowsAreListed)
{
    JobsState jobs;
    AddWaiting(jobs.waiting, {u"/a.m4a"_s}, {});
    EXPECT_EQ(keys(jobs), QStringList{u"wait:/a.m4a"_s});
}

TEST(BuildRows, CountsAreThoseOfTheListedRows)
{
    JobsState jobs = stateOf(
        R"([{"id":"a","status":"queued","paused":true},{"id":"b","status":"ready"},{"id":"c","status":"ready","hidden":true}])",
        {u"/a.m4a"_s});
    jobs.starting = true;
    const RowCounts counts = BuildRows(jobs).counts;
    EXPECT_EQ(counts.active, 2);
    EXPECT_EQ(counts.ready, 1);
    EXPECT_TRUE(counts.pausedWork);
}

TEST(RowIndex, OfTwoEntriesForTheSameFileTheFirstIsFound)
{
    JobsState jobs = stateOf("[]", {u"/a.m4a"_s, u"/b.m4a"_s});
    jobs.waiting.append(jobs.waiting.last());
    const Rows rows = BuildRows(jobs).rows;
    ASSERT_EQ(rows.size(), 3);
    EXPECT_EQ(RowKey(rows.at(1)), RowKey(rows.at(2)));
    EXPECT_EQ(RowIndex(rows, u"wait:/b.m4a"_s), 1);
}

TEST(RowIndex, UnknownAndEmptyKeysFindNothing)
{
    const Rows rows = BuildRows(stateOf(R"([{"id":"a"},{"id":""}])")).rows;
    ASSERT_EQ(rows.size(), 2);
    EXPECT_EQ(RowIndex(rows, u"a"_s), 0);
    EXPECT_EQ(RowIndex(rows, u"b"_s), -1);
    EXPECT_EQ(RowIndex(rows, u""_s), -1);
    EXPECT_EQ(RowIndex({}, u"a"_s), -1);
}

class RowSignature : public testing::Test
{
protected:
    JobsState m_jobs = stateOf(R"([{"id":"a","status":"transcribing"}])", {u"/a.m4a"_s, u"/b.m4a"_s});
    const QString m_before = BuildRows(m_jobs).signature;

    void expectChange() const { EXPECT_NE(BuildRows(m_jobs).signature, m_before); }
};

TEST_F(RowSignature, IsEqualForEqualStates)
{
    m_jobs = stateOf(R"([{"status":"transcribing","id":"a"}])", {u"/a.m4a"_s, u"/b.m4a"_s});
    EXPECT_EQ(BuildRows(m_jobs).signature, m_before);
}

TEST_F(RowSignature, ChangesWithAFieldOfARow)
{
    m_jobs.history = stateOf(R"([{"id":"a","status":"transcribing","new":1}])").history;
    expectChange();
}

TEST_F(RowSignature, ChangesWithTheLatestJob)
{
    m_jobs.latestJob = test::object(R"({"id":"a","progress":"1%"})");
    expectChange();
    const QString first = BuildRows(m_jobs).signature;
    m_jobs.latestJob = test::object(R"({"id":"a","progress":"2%"})");
    EXPECT_NE(BuildRows(m_jobs).signature, first);
}

TEST_F(RowSignature, ChangesWhenAStartBegins)
{
    m_jobs.starting = true;
    expectChange();
}

TEST_F(RowSignature, ChangesWithTheNumberOfWaitingFiles)
{
    m_jobs.waiting.removeLast();
    expectChange();
}

TEST_F(RowSignature, ChangesWithTheOrderOfWaitingFiles)
{
    m_jobs.waiting.swapItemsAt(0, 1);
    expectChange();
}

TEST_F(RowSignature, ChangesWithThePathOfAWaitingFile)
{
    m_jobs.waiting.last().insert(u"url"_s, QUrl::fromLocalFile(u"/c.m4a"_s));
    expectChange();
}

} // namespace
