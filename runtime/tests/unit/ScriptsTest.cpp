#include "text/Scripts.h"

#include "Support.h"

using namespace Qt::StringLiterals;

namespace engine {

namespace {

struct Pieces
{
    QString text;
    QStringList pieces;
};

} // namespace

TEST(Scripts, aTextWithoutBlanksComesInPieces)
{
    const std::vector<Pieces> cases{
        {u""_s, {}},
        {u"don't"_s, {u"don't"_s}},
        {u"twenty-five,"_s, {u"twenty-five,"_s}},
        {u"我们走。"_s, {u"我"_s, u"们"_s, u"走。"_s}},
        {u"「はい」、"_s, {u"「は"_s, u"い」、"_s}},
        {u"メールを送る"_s, {u"メール"_s, u"を"_s, u"送"_s, u"る"_s}},
        {u"知りません"_s, {u"知"_s, u"り"_s, u"ません"_s}},
        {u"NHK放送3回"_s, {u"NHK"_s, u"放"_s, u"送"_s, u"3"_s, u"回"_s}},
        {u"\U00020BB7野家"_s, {u"\U00020BB7"_s, u"野"_s, u"家"_s}},
        {u"—"_s, {u"—"_s}},
    };
    for (const auto &[text, pieces] : cases) {
        EXPECT_EQ(piecesOf(text), pieces);
        EXPECT_EQ(piecesOf(text).join(QString()), text);
    }
}

TEST(Scripts, aSentenceEndsAsItsScriptDoes)
{
    EXPECT_EQ(fullStopFor(u"Gut"), u"."_s);
    EXPECT_EQ(fullStopFor(u"走」"), u"。"_s);
    EXPECT_EQ(fullStopFor(u"है"), u"।"_s);
    EXPECT_EQ(fullStopFor(u"ครับ"), QString());
    EXPECT_EQ(fullStopFor(u"12"), u"."_s);
}

TEST(Scripts, onlyChineseAndJapaneseStandWithoutABlank)
{
    EXPECT_EQ(jointBetween(u"我们", u"走"), QString());
    EXPECT_EQ(jointBetween(u"走。", u"好"), QString());
    EXPECT_EQ(jointBetween(u"我有", u"iPhone"), u" "_s);
    EXPECT_EQ(jointBetween(u"ครับ", u"สวัสดี"), u" "_s);
    EXPECT_EQ(jointBetween(u"안녕", u"하세요"), u" "_s);
}

} // namespace engine
