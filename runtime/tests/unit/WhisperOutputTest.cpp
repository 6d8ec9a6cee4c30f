#include "recognise/WhisperOutput.h"

#include "Support.h"

using namespace Qt::StringLiterals;

namespace engine {

namespace {

QByteArray offsets(int from, int to)
{
    return "\"offsets\":{\"from\":" + QByteArray::number(from) + ",\"to\":" + QByteArray::number(to) + "}";
}

QByteArray token(const QByteArray &text, int from, int to)
{
    return "{\"text\":\"" + text + "\"," + offsets(from, to) + ",\"id\":1}";
}

QByteArray file(const QByteArray &parts, const QByteArray &language = "uk")
{
    return "{\n\t\"result\": {\"language\": \"" + language + "\"},\n\t\"transcription\": [" + parts + "]}\n";
}

} // namespace

TEST(WhisperOutput, putsTokensTogetherByTheirBytes)
{
    // "щ" is D1 89, cut between two tokens.
    const QByteArray part = "{" + offsets(0, 2000) +
                            ",\"text\":\" \xD1\x89\xD0\xBE, \\\"a\\\"\",\"tokens\":[" +
                            token("[_BEG_]", 0, 0) + "," + token(" \xD1", 0, 400) + "," +
                            token("\x89\xD0\xBE", 400, 900) + "," + token(",", 900, 1000) + "," +
                            token(" \\\"a\\\"", 1000, 1800) + "," + token("[_TT_100]", 2000, 2000) + "]}";
    const auto heard = readWhisperOutput(file(part), 5000);
    ASSERT_TRUE(heard);
    EXPECT_EQ(heard->language, u"uk"_s);
    ASSERT_EQ(heard->phrases.size(), 1U);
    EXPECT_EQ(heard->phrases[0].words, (std::vector<Word>{{u"що,"_s, 0, 1000}, {u"\"a\""_s, 1000, 1800}}));
}

TEST(WhisperOutput, leavesOutWhatIsNoCharacterAndControlCharacters)
{
    const QByteArray part = "{" + offsets(0, 1000) + ",\"text\":\" \xD1 ok\",\"tokens\":[" +
                            token(" \xD1", 0, 100) + "," + token(" o\x01k\xFF", 100, 900) + "]}";
    const auto heard = readWhisperOutput(file(part), 5000);
    ASSERT_TRUE(heard);
    EXPECT_EQ(heard->phrases[0].words.size(), 2U);
    EXPECT_EQ(heard->phrases[0].words[1].text, u"k"_s);
}

TEST(WhisperOutput, timesNeverGoBackNorBeyondTheSound)
{
    const QByteArray part = "{" + offsets(500, 9000) + ",\"text\":\" a b\",\"tokens\":[" +
                            token(" a", 900, 800) + "," + token(" b", 100, 99999) + "," +
                            token(" c", -1, -1) + "]}";
    const auto heard = readWhisperOutput(file(part), 3000);
    ASSERT_TRUE(heard);
    EXPECT_EQ(heard->phrases[0].words,
              (std::vector<Word>{{u"a"_s, 900, 900}, {u"b"_s, 900, 3000}, {u"c"_s, 3000, 3000}}));
}

TEST(WhisperOutput, withoutTokensTheWordsShareTheTime)
{
    const auto heard = readWhisperOutput(file("{" + offsets(0, 1000) + ",\"text\":\" one two\"}"), 3000);
    ASSERT_TRUE(heard);
    EXPECT_EQ(heard->phrases[0].words, (std::vector<Word>{{u"one"_s, 0, 500}, {u"two"_s, 500, 1000}}));
}

TEST(WhisperOutput, soundsThatAreOnlyDescribedAreNotSpeech)
{
    for (const QByteArray text : {" [BLANK_AUDIO]", " (music)", "*laughs*", " \xE2\x99\xAA", " ", ""}) {
        const auto heard =
            readWhisperOutput(file("{" + offsets(0, 1000) + ",\"text\":\"" + text + "\"}"), 3000);
        ASSERT_TRUE(heard);
        EXPECT_TRUE(heard->phrases.empty()) << text.constData();
    }
    const auto said = readWhisperOutput(file("{" + offsets(0, 1000) + ",\"text\":\" (a) b (c)\"}"), 3000);
    EXPECT_EQ(said->phrases.size(), 1U);
}

TEST(WhisperOutput, nothingElseIsTakenForIt)
{
    for (const QByteArray &other :
         {QByteArray(), QByteArray("\0\xff{{", 4), QByteArray("[]"), QByteArray("{}"),
          QByteArray("{\"transcription\": 3}"), file("{").chopped(4)})
        EXPECT_FALSE(readWhisperOutput(other, 1000));
    EXPECT_TRUE(readWhisperOutput(file(""), 1000)->phrases.empty());
}

TEST(WhisperOutput, readsTheLastProgress)
{
    EXPECT_EQ(readWhisperProgress("a: progress =   5%\na: progress =  35%\na: prog"), 35);
    EXPECT_EQ(readWhisperProgress("a: progress =   5%\na: progress =  3"), 5);
    EXPECT_EQ(readWhisperProgress("progress = many% progress = 900%"), std::nullopt);
    EXPECT_EQ(readWhisperProgress(""), std::nullopt);
}

TEST(WhisperOutput, knowsTheLanguages)
{
    const std::vector<std::pair<QString, QString>> codes{
        {u"uk"_s, u"uk"_s},      {u"en-GB"_s, u"en"_s},  {u"EN_us"_s, u"en"_s}, {u"eng"_s, u"en"_s},
        {u"zh-Hans"_s, u"zh"_s}, {u"nb"_s, u"no"_s},     {u"fil"_s, u"tl"_s},   {u"haw"_s, u"haw"_s},
        {u"iw"_s, u"he"_s},      {u"auto"_s, u"auto"_s}, {u"xx"_s, QString()},  {u"tlh"_s, QString()}};
    for (const auto &[code, expected] : codes)
        EXPECT_EQ(whisperLanguage(code), expected) << code.toStdString();
}

} // namespace engine
