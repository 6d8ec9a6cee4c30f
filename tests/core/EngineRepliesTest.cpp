#include "engine/EngineReplies.h"

#include "engine/Stages.h"
#include "support/Support.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace tuppi;

namespace {

RawReply replyOf(const QByteArray &out, int status = 0)
{
    return {status, out, {}};
}

HistoryPointer historyOf(const QByteArray &out)
{
    return ReadHistory(replyOf(out), nullptr).history;
}

template <typename Jobs> QStringList ids(const Jobs &entries)
{
    QStringList ids;
    for (const QJsonObject &entry : entries)
        ids.append(entry.value(u"id"_s).toString());
    return ids;
}

/// A reply with that many jobs; the one at `changed` has another title.
QByteArray manyJobs(int count, int changed = -1)
{
    QByteArray out("[");
    for (int i = 0; i < count; ++i) {
        out += i == 0 ? "" : ",";
        out += R"({"id":"job-)" + QByteArray::number(i) + R"(","status":")" + (i % 100 == 0 ? "queued" : "ready")
            + R"(","title":")" + (i == changed ? "changed" : "title") + R"(","error":null})";
    }
    return out + "]";
}

TEST(IsActiveStage, HoldsForTheFourStagesOnly)
{
    for (const QString &stage : {u"queued"_s, u"transcribing"_s, u"analyzing"_s, u"cleaning"_s})
        EXPECT_TRUE(IsActiveStage(stage)) << stage.toStdString();
    for (const QString &status : {u"paused"_s, u"cancelled"_s, u"failed"_s, u"ready"_s, u"starting"_s, u"waiting"_s,
                                  u"Queued"_s, u""_s})
        EXPECT_FALSE(IsActiveStage(status)) << status.toStdString();
}

TEST(ReadObject, ReadsObjectsOnly)
{
    EXPECT_EQ(ReadObject(R"({"a":1})"), test::object(R"({"a":1})"));
    EXPECT_EQ(ReadObject("{}"), QJsonObject());
    for (const QByteArray &unusable : {QByteArray(), QByteArray("[]"), QByteArray("null"), QByteArray("\"text\""),
                                       QByteArray("{"), QByteArray("{} trailing"), QByteArray("{\"a\":\"\xff\"}")})
        EXPECT_EQ(ReadObject(unusable), std::nullopt) << unusable.toStdString();
}

TEST(ReadArray, ReadsArraysOnly)
{
    EXPECT_EQ(ReadArray("[1]"), QJsonArray{1});
    EXPECT_EQ(ReadArray("[]"), QJsonArray());
    for (const QByteArray &unusable : {QByteArray(), QByteArray("{}"), QByteArray("null"), QByteArray("[1"),
                                       QByteArray("Error: no"), QByteArray("[\"\xc3\x28\"]")})
        EXPECT_EQ(ReadArray(unusable), std::nullopt) << unusable.toStdString();
}

TEST(ReadHistory, EmptyReplyIsNoUnchangedOneEvenAtTheStart)
{
    const HistoryPointer nothingYet = std::make_shared<const History>();
    EXPECT_EQ(ReadHistory(replyOf(""), nothingYet).history, nullptr);
}

TEST(ReadHistory, EntryWithIdNullIsNotListedAndNotActive)
{
    const HistoryPointer history = historyOf(R"([{"id":null,"status":"transcribing"},{"id":"a","status":"ready"}])");
    ASSERT_TRUE(history);
    EXPECT_EQ(ids(history->entries), QStringList{u"a"_s});
    EXPECT_EQ(ids(history->listed), QStringList{u"a"_s});
    EXPECT_TRUE(history->active.isEmpty());
    EXPECT_EQ(history->counts.active, 0);
}

TEST(ReadHistory, EntryWithoutIdIsNotListed)
{
    const HistoryPointer history = historyOf(R"([{"status":"queued"},{"id":"a","status":"queued"}])");
    ASSERT_TRUE(history);
    EXPECT_EQ(ids(history->entries), QStringList{u"a"_s});
    EXPECT_EQ(ids(history->active), QStringList{u"a"_s});
    EXPECT_EQ(history->listed.size(), 1);
}

TEST(ReadHistory, ElementsThatAreNoObjectsAreDropped)
{
    const HistoryPointer history = historyOf(R"([null,5,"text",["id"],{"id":"a"}])");
    ASSERT_TRUE(history);
    EXPECT_EQ(ids(history->entries), QStringList{u"a"_s});
}

TEST(ReadHistory, NullIsTreatedAsMissing)
{
    const HistoryPointer null =
        historyOf(R"([{"id":"a","status":"transcribing","paused":null,"hidden":null},{"id":"b","status":null,"hidden":null}])");
    ASSERT_TRUE(null);
    EXPECT_FALSE(null->counts.pausedWork);
    EXPECT_EQ(ids(null->listed), (QStringList{u"a"_s, u"b"_s}));
    EXPECT_EQ(ids(null->active), QStringList{u"a"_s});
}

TEST(ReadHistory, WrongTypesOfFieldsDoNoHarm)
{
    const HistoryPointer history =
        historyOf(R"([{"id":"a","status":5,"hidden":"yes","paused":[],"title":{}},{"id":"b","status":["queued"]}])");
    ASSERT_TRUE(history);
    EXPECT_EQ(ids(history->listed), (QStringList{u"a"_s, u"b"_s}));
    EXPECT_TRUE(history->active.isEmpty());
    EXPECT_EQ(history->entries.first().value(u"status"_s), QJsonValue(5));
}

TEST(ReadHistory, HiddenActiveJobIsListedAndHiddenReadyJobIsNot)
{
    const HistoryPointer history = historyOf(
        R"([{"id":"a","status":"ready","hidden":true},{"id":"b","status":"transcribing","hidden":true},{"id":"c","status":"ready"}])");
    ASSERT_TRUE(history);
    EXPECT_EQ(ids(history->listed), (QStringList{u"b"_s, u"c"_s}));
    EXPECT_EQ(ids(history->entries), (QStringList{u"a"_s, u"b"_s, u"c"_s}));
    EXPECT_EQ(history->counts.ready, 1);
}

TEST(ReadHistory, ActiveJobsComeFirstAndTheEnginesOrderHoldsWithin)
{
    const HistoryPointer history = historyOf(
        R"([{"id":"r1","status":"ready"},{"id":"a1","status":"cleaning"},{"id":"f1","status":"failed"},{"id":"x1"},)"
        R"({"id":"a2","status":"queued"},{"id":"r2","status":"ready"}])");
    ASSERT_TRUE(history);
    EXPECT_EQ(ids(history->listed),
              (QStringList{u"a1"_s, u"a2"_s, u"r1"_s, u"f1"_s, u"x1"_s, u"r2"_s}));
    EXPECT_EQ(ids(history->active), (QStringList{u"a1"_s, u"a2"_s}));
    EXPECT_EQ(history->counts.active, 2);
    EXPECT_EQ(history->counts.ready, 2);
}

TEST(ReadHistory, PausedCountsOnlyForJobsUnderWay)
{
    EXPECT_TRUE(historyOf(R"([{"id":"a","status":"queued","paused":true}])")->counts.pausedWork);
    EXPECT_TRUE(historyOf(R"([{"id":"a","status":"queued","paused":1}])")->counts.pausedWork);
    EXPECT_FALSE(historyOf(R"([{"id":"a","status":"queued","paused":0}])")->counts.pausedWork);
    EXPECT_FALSE(historyOf(R"([{"id":"a","status":"ready","paused":true}])")->counts.pausedWork);
}

TEST(ReadHistory, EntriesKeepFieldsThatNobodyReads)
{
    const QByteArray entry = R"({"id":"a","status":"ready","unknown":{"deep":[1,null]},"title":null})";
    EXPECT_EQ(historyOf("[" + entry + "]")->entries.first(), test::object(entry));
}

TEST(ReadHistory, ReplyThatIsNoArrayGivesNoHistoryAndKeepsTheStatus)
{
    for (const QByteArray &out : {QByteArray(), QByteArray("{}"), QByteArray("[{\"id\":"), QByteArray("garbage")}) {
        const HistoryReply reply = ReadHistory(replyOf(out, 3), historyOf("[]"));
        EXPECT_EQ(reply.status, 3);
        EXPECT_EQ(reply.history, nullptr) << out.toStdString();
    }
}

TEST(ReadHistory, NotUtf8GivesNoHistory)
{
    EXPECT_EQ(historyOf("[{\"id\":\"a\",\"title\":\"\xff\"}]"), nullptr);
}

TEST(ReadHistory, ArrayIsUsableWhateverTheStatus)
{
    const HistoryReply reply = ReadHistory(replyOf("[]", 127), nullptr);
    EXPECT_EQ(reply.status, 127);
    EXPECT_NE(reply.history, nullptr);
}

TEST(ReadHistory, UnchangedReplySharesTheSameHistory)
{
    const HistoryPointer first = historyOf(manyJobs(5));
    EXPECT_EQ(ReadHistory(replyOf(manyJobs(5)), first).history, first);
    EXPECT_NE(ReadHistory(replyOf(manyJobs(5, 3)), first).history, first);
    EXPECT_NE(ReadHistory(replyOf(manyJobs(6)), first).history, first);
}

TEST(ReadHistory, TenThousandEntriesAreAllThere)
{
    const HistoryPointer history = historyOf(manyJobs(10'000));
    ASSERT_TRUE(history);
    EXPECT_EQ(history->entries.size(), 10'000);
    EXPECT_EQ(history->listed.size(), 10'000);
    EXPECT_EQ(history->active.size(), 100);
    EXPECT_EQ(history->counts.ready, 9'900);
    EXPECT_EQ(history->entries.last().value(u"id"_s), QJsonValue(u"job-9999"_s));
    EXPECT_NE(historyOf(manyJobs(10'000, 9'998))->digest, history->digest);
}

TEST(HistoryDigest, EqualEntriesHaveEqualDigestsWhateverTheWriting)
{
    EXPECT_EQ(historyOf(R"([{"id":"a","status":"ready"}])")->digest,
              historyOf(R"( [ {"status" : "ready", "id" : "a"} ] )")->digest);
}

class HistoryDigest : public testing::TestWithParam<QByteArray>
{
};

TEST_P(HistoryDigest, ChangesWithAnyField)
{
    const QByteArray base = R"([{"id":"a","status":"ready","title":"t","n":1,"deep":{"x":[1]}},{"id":"b","status":"ready"}])";
    EXPECT_NE(historyOf(GetParam())->digest, historyOf(base)->digest) << GetParam().toStdString();
}

INSTANTIATE_TEST_SUITE_P(
    EngineReplies, HistoryDigest,
    testing::Values(R"([{"id":"c","status":"ready","title":"t","n":1,"deep":{"x":[1]}},{"id":"b","status":"ready"}])",
                    R"([{"id":"a","status":"failed","title":"t","n":1,"deep":{"x":[1]}},{"id":"b","status":"ready"}])",
                    R"([{"id":"a","status":"ready","title":"u","n":1,"deep":{"x":[1]}},{"id":"b","status":"ready"}])",
                    R"([{"id":"a","status":"ready","title":"t","n":1.5,"deep":{"x":[1]}},{"id":"b","status":"ready"}])",
                    R"([{"id":"a","status":"ready","title":"t","n":"1","deep":{"x":[1]}},{"id":"b","status":"ready"}])",
                    R"([{"id":"a","status":"ready","title":"t","n":1,"deep":{"x":[2]}},{"id":"b","status":"ready"}])",
                    R"([{"id":"a","status":"ready","title":"t","n":1,"deep":{"x":[1]},"new":null},{"id":"b","status":"ready"}])",
                    R"([{"id":"a","status":"ready","title":"t","deep":{"x":[1]}},{"id":"b","status":"ready"}])",
                    R"([{"id":"b","status":"ready"},{"id":"a","status":"ready","title":"t","n":1,"deep":{"x":[1]}}])",
                    R"([{"id":"a","status":"ready","title":"t","n":1,"deep":{"x":[1]}}])", "[]"));

TEST(ReadModelList, ReadsTheThreeFields)
{
    const auto list = ReadModelList(R"({"custom":[{"id":"m"}],"text_model":"t","ollama_models":["t","u"]})");
    ASSERT_TRUE(list);
    EXPECT_EQ(list->custom, test::array(R"([{"id":"m"}])"));
    EXPECT_EQ(list->textModel, u"t"_s);
    EXPECT_EQ(list->ollamaModels, (QStringList{u"t"_s, u"u"_s}));
}

TEST(ReadModelList, NullAndMissingFieldsAreEmpty)
{
    const auto list = ReadModelList(R"({"custom":null,"text_model":null})");
    ASSERT_TRUE(list);
    EXPECT_TRUE(list->custom.isEmpty());
    EXPECT_TRUE(list->textModel.isEmpty());
    EXPECT_TRUE(list->ollamaModels.isEmpty());
}

TEST(ReadModelList, FieldsOfAnotherTypeAreEmpty)
{
    const auto list = ReadModelList(R"({"custom":"m","text_model":5,"ollama_models":{"a":1}})");
    ASSERT_TRUE(list);
    EXPECT_TRUE(list->custom.isEmpty());
    EXPECT_TRUE(list->textModel.isEmpty());
    EXPECT_TRUE(list->ollamaModels.isEmpty());
}

TEST(ReadModelList, ReplyThatIsNoObjectIsNothing)
{
    EXPECT_FALSE(ReadModelList(""));
    EXPECT_FALSE(ReadModelList("[]"));
    EXPECT_FALSE(ReadModelList("{"));
}

} // namespace
