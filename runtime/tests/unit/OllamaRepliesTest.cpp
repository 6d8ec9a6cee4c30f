#include "models/OllamaReplies.h"

#include "core/Failure.h"

#include "Support.h"

using namespace Qt::StringLiterals;

namespace engine {

TEST(OllamaReplies, aPullTellsHowFarItIs)
{
    const std::vector<std::pair<QByteArray, QString>> cases = {
        {R"({"status":"pulling","total":200,"completed":50})", u"50/200"_s},
        {R"({"total":200})", u"0/200"_s},
        {R"({"total":200,"completed":300})", u"200/200"_s},
        {R"({"total":200,"completed":-1})", u"0/200"_s},
        {R"({"total":9223372036854775807,"completed":9223372036854775807})",
         u"9223372036854775807/9223372036854775807"_s},
        {R"({"total":0,"completed":5})", u""_s},
        {R"({"total":-5,"completed":5})", u""_s},
        {R"({"completed":5})", u""_s},
        {"no object", u""_s},
    };
    for (const auto &[line, told] : cases) {
        QString shown;
        PullReply reply(u"model"_s,
                        [&](qint64 there, qint64 size) { shown = u"%1/%2"_s.arg(there).arg(size); });
        reply.take(line + '\n');
        EXPECT_EQ(shown, told) << line.constData();
        EXPECT_FALSE(reply.finish());
    }
}

TEST(OllamaReplies, mayComeInPieces)
{
    const QByteArray pull = "{\"status\":\"pulling\"}\n{\"status\":\"success\"}";
    const QByteArray answer =
        "{\"message\":{\"content\":\"Good \"}}\n{\"message\":{\"content\":\"day\"},\"done\":true}";
    for (const qsizetype size : {1, 7, 1000}) {
        PullReply pulled(u"model"_s, [](qint64, qint64) {});
        for (qsizetype at = 0; at < pull.size(); at += size)
            pulled.take(pull.mid(at, size));
        EXPECT_TRUE(pulled.finish());
        AnswerReply answered;
        for (qsizetype at = 0; at < answer.size(); at += size)
            answered.take(answer.mid(at, size));
        EXPECT_EQ(answered.finish(), u"Good day"_s);
    }
}

TEST(OllamaReplies, anAnswerWithoutAnEndIsNone)
{
    for (const char *lines :
         {"", "{\"message\":{\"content\":\"Good\"}}", "{\"done\":false}", "no object",
          "{\"message\":{\"content\":\"Good\"},\"done\":true,\"done_reason\":\"length\"}"}) {
        AnswerReply reply;
        reply.take(lines);
        EXPECT_EQ(reply.finish(), std::nullopt) << lines;
    }
}

TEST(OllamaReplies, whatIsTooLongIsRefused)
{
    PullReply pulled(u"model"_s, [](qint64, qint64) {});
    EXPECT_THROW(pulled.take(QByteArray((1 << 20) + 1, ' ')), Failure);
    AnswerReply answered;
    const QByteArray line = "{\"message\":{\"content\":\"" + QByteArray(100'001, 'a') + "\"}}\n";
    answered.take(line);
    EXPECT_THROW(answered.take(line), Failure);
}

} // namespace engine
