#include "engine/HistoryReader.h"

#include "support/Support.h"

#include <QJsonDocument>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace tuppi;

namespace {

HistoryPointer readInPieces(const QByteArray &bytes, qsizetype piece, const HistoryPointer &previous = nullptr)
{
    HistoryReader reader(previous);
    for (qsizetype at = 0; at < bytes.size(); at += piece)
        reader.take(QByteArrayView(bytes).sliced(at, qMin(piece, bytes.size() - at)));
    return reader.finish(0).history;
}

QByteArray replyOfMany(int count, int changed = -1)
{
    QByteArray reply = "[";
    for (int number = 0; number < count; ++number) {
        const QByteArray id = QByteArray::number(number);
        reply += (number == 0 ? R"({"id":"job-)" : R"(, {"id":"job-)") + id + R"(","title":"Part )" + id
            + (number == changed ? " changed" : "") + R"(","status":"ready","call_dir":"/calls/)" + id + R"("})";
    }
    return reply + "]\n";
}

/// A reply is usable exactly when the parser takes it for an array, however it arrives, and holds the same jobs.
class ReplyInPieces : public testing::TestWithParam<QByteArray>
{
};

TEST_P(ReplyInPieces, IsWhatTheParserSays)
{
    const QByteArray bytes = GetParam();
    const QJsonDocument document = bytes.isValidUtf8() ? QJsonDocument::fromJson(bytes) : QJsonDocument();
    QList<QJsonObject> expected;
    for (const QJsonValue &value : document.array()) {
        if (!value["id"_L1].isUndefined() && !value["id"_L1].isNull())
            expected.append(value.toObject());
    }
    for (const qsizetype piece : {qsizetype(1), qsizetype(2), qsizetype(3), qsizetype(7), qMax<qsizetype>(1, bytes.size())}) {
        const HistoryPointer history = readInPieces(bytes, piece);
        ASSERT_EQ(history != nullptr, document.isArray()) << bytes.toStdString() << " in pieces of " << piece;
        if (history) {
            EXPECT_EQ(QList<QJsonObject>(history->entries.begin(), history->entries.end()), expected);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    HistoryReader, ReplyInPieces,
    testing::Values("[]", " [ ] \n", "\xef\xbb\xbf[]", "\xef\xbb\xbf [{\"id\":\"a\"}]", " \xef\xbb\xbf[]", "\xef[]", "\xef []", "", " ",
                    "[", "]", "[,]", "[1,]", "[,1]", "[1 2]", "[1,2", "[[]", "[]]", "[] x", "x[]", "{}", "{\"a\":[]}", "[\"]\"]",
                    R"(["\"]\\",{"id":"a"}])", R"([{"id":"a","t":"],[{\"}"},{"id":"b"}])", R"([null,5,-1.5e3,true,"x",["id"],{"id":"a"}])",
                    R"([{"id":"a"}{"id":"b"}])", R"([{"id":"a"]})", R"([{"id":"a"}},{"id":"b"}])", R"([{"id":}])", R"([nul])",
                    R"([{"id":"ключ","title":"\u0041\ud83d\ude00","deep":{"x":[1,{"y":null}]}} , {"id":7}])", "[{\"id\":\"\xff\"}]",
                    "[{\"id\":\"a\",\"t\":\"\xd0\"}]", R"([{"id":"a","id":"b"}])", "[" + QByteArray(600, '[') + QByteArray(600, ']') + "]",
                    "[" + QByteArray(1023, '[') + QByteArray(1023, ']') + "]", "[" + QByteArray(1024, '[') + QByteArray(1024, ']') + "]",
                    replyOfMany(500)));

TEST(HistoryReader, SharesWhatHasNotChanged)
{
    const HistoryPointer before = readInPieces(replyOfMany(2'000), 1000);
    const HistoryPointer after = readInPieces(replyOfMany(2'000, 700), 1000, before);
    ASSERT_TRUE(before && after);
    const QList<JobBlockPointer> &known = before->entries.blocks();
    qsizetype fresh = 0;
    for (const JobBlockPointer &block : after->entries.blocks())
        fresh += !known.contains(block);
    EXPECT_GT(known.size(), 20);
    EXPECT_GE(fresh, 1);
    EXPECT_LE(fresh, 3);
    EXPECT_NE(after->digest, before->digest);
    EXPECT_EQ(after->entries.titleAt(700), u"Part 700 changed"_s);
    EXPECT_EQ(before->entries.titleAt(700), u"Part 700"_s);
}

TEST(HistoryReader, AnAddedJobChangesItsOwnSurroundingsOnly)
{
    const HistoryPointer before = readInPieces(replyOfMany(2'000), 1000);
    const HistoryPointer after = readInPieces(R"([{"id":"new"}, )" + replyOfMany(2'000).sliced(1), 1000, before);
    ASSERT_TRUE(before && after);
    qsizetype fresh = 0;
    for (const JobBlockPointer &block : after->entries.blocks())
        fresh += !before->entries.blocks().contains(block);
    EXPECT_LE(fresh, 3);
    EXPECT_EQ(after->entries.size(), 2'001);
    EXPECT_EQ(after->entries.idAt(0), u"new"_s);
    EXPECT_EQ(after->entries.idAt(2'000), u"job-1999"_s);
}

TEST(HistoryReader, TheSameReplyIsTheSameHistory)
{
    const HistoryPointer before = readInPieces(replyOfMany(300), 100);
    EXPECT_EQ(readInPieces(replyOfMany(300), 77, before), before);
}

TEST(HistoryReader, AReplyThatRepeatsItselfIsTheSameHistoryTheNextTime)
{
    const QByteArray job = R"({"id":"a","status":"ready"})";
    const QByteArray reply = '[' + (job + ',').repeated(1000) + job + ']';
    const HistoryPointer first = readInPieces(reply, 4096);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->entries.size(), 1001);
    EXPECT_EQ(readInPieces(reply, 4096, first), first);
}

TEST(JobList, FindsByIdAndByCallDir)
{
    const HistoryPointer history =
        readInPieces(R"([{"id":7,"call_dir":"/a"},{"id":"x","call_dir":"/a"},{"id":"y","call_dir":["/a"]},{"id":"","call_dir":""}])", 5);
    ASSERT_TRUE(history);
    const JobList &jobs = history->entries;
    EXPECT_EQ(jobs.indexOfId(u"x"_s), 1);
    EXPECT_EQ(jobs.indexOfId(u"7"_s), -1);
    EXPECT_EQ(jobs.indexOfId(u""_s), 3);
    EXPECT_EQ(jobs.withCallDir(u"/a"_s).size(), 2);
    EXPECT_EQ(jobs.withCallDir(u""_s).size(), 1);
    EXPECT_TRUE(jobs.withCallDir(u"/b"_s).isEmpty());
    EXPECT_EQ(jobs.only(1).first().value(u"id"_s), QJsonValue(u"x"_s));
}

} // namespace
