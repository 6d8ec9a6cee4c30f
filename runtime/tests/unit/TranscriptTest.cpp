#include "text/Transcript.h"
#include "text/Words.h"

#include "Support.h"

using namespace Qt::StringLiterals;

namespace engine {

namespace {

// Words of 200 ms each, one after another.
Line spoken(const QString &text, qint64 startMs = 1000)
{
    Segment segment{0, startMs, startMs, std::vector<Word>{}};
    for (const QString &word : wordsOf(text)) {
        segment.words->push_back({word, segment.endMs, segment.endMs + 200});
        segment.endMs += 200;
    }
    return linesFrom({segment}).front();
}

QString wordsAndTimes(const Line &line)
{
    QStringList list;
    for (const Word &word : line.words)
        list.append(u"%1 %2-%3"_s.arg(word.text).arg(word.startMs).arg(word.endMs));
    return list.join(u", ");
}

} // namespace

TEST(Words, areWhatStandsBetweenBlanks)
{
    EXPECT_EQ(wordsOf(u"  a\tb\u00a0c\u2028d\ufeffe  "),
              (QStringList{u"a"_s, u"b"_s, u"c"_s, u"d"_s, u"e"_s}));
    EXPECT_EQ(wordsOf(u"\u200f\u05d0\u05d1 \U0001f600\u200bx"),
              (QStringList{u"\u200f\u05d0\u05d1"_s, u"\U0001f600\u200bx"_s}));
    EXPECT_TRUE(wordsOf(u" ").isEmpty());
    EXPECT_EQ(trimmedText(u"\u3000 a b\ufeff"), u"a b"_s);
    EXPECT_EQ(trimmedText(u" "), QString());
}

TEST(Words, inCommonKeepTheirOrder)
{
    using Pairs = std::vector<std::pair<size_t, size_t>>;
    const auto common = [](const QString &a, const QString &b) {
        return commonWords(wordsOf(a), wordsOf(b));
    };
    EXPECT_EQ(common(u"a b c"_s, u"a b c"_s), (Pairs{{0, 0}, {1, 1}, {2, 2}}));
    EXPECT_EQ(common(u"a b c d"_s, u"a x c d"_s), (Pairs{{0, 0}, {2, 2}, {3, 3}}));
    EXPECT_EQ(common(u"a b"_s, u"x a y b z"_s), (Pairs{{0, 1}, {1, 3}}));
    EXPECT_EQ(common(u"a b"_s, u"b a"_s).size(), 1U);
    EXPECT_TRUE(common(u""_s, u"a"_s).empty());
    // Where both differ throughout and are long, only their ends are compared.
    const QString many = u"x "_s.repeated(5000);
    EXPECT_EQ(common(u"a "_s + many + u"b"_s, u"a "_s + u"y "_s.repeated(5000) + u"b"_s).size(), 2U);
}

TEST(Transcript, hasALineForEverySegmentInWhichSomethingWasSaid)
{
    const Segment silent{0, 0, 900, std::vector<Word>{}};
    const Segment notRecognised{1, 900, 1000, std::nullopt};
    const Segment said{2, 1000, 2000, std::vector<Word>{{u"New York"_s, 1000, 1400}, {u"it"_s, 1400, 1500}}};
    const std::vector<Line> lines = linesFrom({silent, notRecognised, said});
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].text, u"New York it"_s);
    EXPECT_EQ(lines[0].startMs, 1000);
    EXPECT_EQ(lines[0].endMs, 2000);
    EXPECT_TRUE(lines[0].speaker.isEmpty());
    // As many times as words, also where a recogniser hears two as one.
    EXPECT_EQ(wordsAndTimes(lines[0]), u"New 1000-1200, York 1200-1400, it 1400-1500"_s);
}

TEST(Transcript, anotherTextKeepsTheTimesOfItsWords)
{
    const Line line = spoken(u"good mourning to you"_s);
    EXPECT_EQ(wordsAndTimes(withText(line, u"good morning to you"_s)),
              u"good 1000-1200, morning 1200-1400, to 1400-1600, you 1600-1800"_s);
    EXPECT_EQ(wordsAndTimes(withText(line, u"good to you"_s)),
              u"good 1000-1200, to 1400-1600, you 1600-1800"_s);
    EXPECT_EQ(wordsAndTimes(withText(line, u"a good fine day to you"_s)),
              u"a 1000-1000, good 1000-1200, fine 1200-1300, day 1300-1400, to 1400-1600, you 1600-1800"_s);
    EXPECT_EQ(wordsAndTimes(withText(line, u"entirely new"_s)), u"entirely 1000-1400, new 1400-1800"_s);
    const Line emptied = withText(line, QString());
    EXPECT_TRUE(emptied.words.empty());
    EXPECT_EQ(wordsAndTimes(withText(emptied, u"two words"_s)), u"two 1000-1400, words 1400-1800"_s);
    EXPECT_EQ(withText(withText(line, u"good morning to you"_s), line.text), line);
}

TEST(Transcript, aLineIsCutAtAWordOrInside)
{
    Line line = spoken(u"one two three"_s);
    line.speaker = u"Anna"_s;
    const auto [first, second] = cut(line, 7);
    EXPECT_EQ(first.text, u"one two"_s);
    EXPECT_EQ(second.text, u"three"_s);
    EXPECT_EQ(wordsAndTimes(first), u"one 1000-1200, two 1200-1400"_s);
    EXPECT_EQ(wordsAndTimes(second), u"three 1400-1600"_s);
    EXPECT_EQ(first.startMs, 1000);
    EXPECT_EQ(first.endMs, 1400);
    EXPECT_EQ(second.startMs, 1400);
    EXPECT_EQ(second.endMs, 1600);
    EXPECT_EQ(first.speaker, u"Anna"_s);
    EXPECT_EQ(second.speaker, u"Anna"_s);

    const auto [left, right] = cut(line, 5);
    EXPECT_EQ(left.text, u"one t"_s);
    EXPECT_EQ(right.text, u"wo three"_s);
    EXPECT_EQ(wordsAndTimes(left), u"one 1000-1200, t 1200-1266"_s);
    EXPECT_EQ(wordsAndTimes(right), u"wo 1266-1400, three 1400-1600"_s);
}

TEST(Transcript, aCutAtAnEndLeavesAnEmptyLine)
{
    Line line = spoken(u"one two three"_s);
    line.endMs = 1700;
    const auto [all, nothing] = cut(line, line.text.size());
    EXPECT_EQ(all.words, line.words);
    EXPECT_EQ(all.endMs, 1600);
    EXPECT_TRUE(nothing.text.isEmpty() && nothing.words.empty());
    EXPECT_EQ(nothing.startMs, 1600);
    EXPECT_EQ(nothing.endMs, 1700);

    const auto [before, whole] = cut(line, 0);
    EXPECT_TRUE(before.text.isEmpty() && before.words.empty());
    EXPECT_EQ(before.endMs, 1000);
    EXPECT_EQ(whole, line);

    const auto [first, second] = cut(withText(line, QString()), 0);
    EXPECT_EQ(first.endMs, 1000);
    EXPECT_EQ(second.startMs, 1000);
    EXPECT_EQ(second.endMs, 1700);
}

TEST(Transcript, joiningUndoesACut)
{
    Line line = spoken(u"one two three"_s);
    const auto [first, second] = cut(line, 3);
    EXPECT_EQ(joined(first, second), line);
    Line lower = second;
    lower.speaker = u"Boris"_s;
    EXPECT_EQ(joined(first, lower), line) << "the upper one's speaker";
    EXPECT_EQ(joined(withText(first, QString()), second).text, u"two three"_s);
    EXPECT_EQ(joined(first, withText(second, QString())).text, u"one"_s);
}

TEST(Transcript, speakersAreNamedOnceInOrder)
{
    std::vector<Line> lines(5, spoken(u"x"_s));
    lines[1].speaker = lines[4].speaker = u"Boris"_s;
    lines[2].speaker = u"Anna"_s;
    EXPECT_EQ(speakersOf(lines), (QStringList{u"Boris"_s, u"Anna"_s}));
}

} // namespace engine
