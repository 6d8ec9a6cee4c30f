#include "text/CleanText.h"
#include "text/Summary.h"

#include "Support.h"

using namespace Qt::StringLiterals;

namespace engine {

namespace {

// A segment of words of 300 ms each; "|" stands for a pause of that many milliseconds.
Segment spoken(int number, qint64 startMs, const QString &text, qint64 pauseMs = 1000)
{
    Segment segment;
    segment.number = number;
    segment.startMs = startMs;
    segment.words.emplace();
    qint64 at = startMs;
    for (const QString &word : text.split(u' ', Qt::SkipEmptyParts)) {
        if (word == u"|") {
            at += pauseMs;
            continue;
        }
        segment.words->push_back({word, at, at + 300});
        at += 300;
    }
    segment.endMs = at;
    return segment;
}

QStringList texts(const std::vector<Sentence> &sentences)
{
    QStringList list;
    for (const Sentence &sentence : sentences)
        list.append(sentence.text);
    return list;
}

} // namespace

TEST(CleanText, pausesEndSentences)
{
    const std::vector<Segment> segments{spoken(0, 0, u"good morning | how are you"_s),
                                        spoken(1, 60000, u"fine"_s)};
    const std::vector<Sentence> sentences = cleanSentences(segments);
    EXPECT_EQ(texts(sentences), (QStringList{u"Good morning."_s, u"How are you."_s, u"Fine."_s}));
    EXPECT_EQ(sentences[1].startMs, 1600);
    EXPECT_EQ(sentences[1].endMs, 2500);
    EXPECT_EQ(paragraphs(sentences), u"Good morning. How are you.\n\nFine.\n"_s);
}

TEST(CleanText, aCutWithoutAPauseEndsNothing)
{
    const std::vector<Segment> segments{spoken(0, 0, u"one two"_s), spoken(1, 650, u"three"_s)};
    EXPECT_EQ(texts(cleanSentences(segments)), QStringList{u"One two three."_s});
}

TEST(CleanText, sentencesThatTheRecogniserWroteStayAsTheyAre)
{
    const std::vector<Segment> segments{spoken(0, 0, u"Well, | on monday. \"Так?\" yes"_s, 800),
                                        spoken(1, 60000, u"e.g. this"_s)};
    EXPECT_EQ(texts(cleanSentences(segments)),
              (QStringList{u"Well, on monday."_s, u"\"Так?\""_s, u"yes"_s, u"e.g."_s, u"this"_s}));
}

TEST(CleanText, capitalsStandWhereEnglishWantsThem)
{
    EXPECT_EQ(texts(cleanSentences({spoken(0, 0, u"on friday i think i'm late in june"_s)})),
              QStringList{u"On Friday I think I'm late in June."_s});
}

TEST(CleanText, noWordIsAddedOrLost)
{
    const Segment segment = spoken(0, 0, u"um we we will | er go there | i say"_s);
    const QString clean = texts(cleanSentences({segment})).join(u' ').toLower().remove(u'.');
    EXPECT_EQ(clean, segment.text());
}

TEST(CleanText, nothingSaidGivesNothing)
{
    Segment silent;
    silent.words.emplace();
    const std::vector<Segment> segments{silent, Segment()};
    EXPECT_TRUE(cleanSentences(segments).empty());
    EXPECT_EQ(paragraphs({}), QString());
    EXPECT_EQ(plainText(segments), QString());
}

TEST(Summary, picksWordForWordAndInOrder)
{
    const QStringList said{u"well yes of course you are right"_s,
                           u"the library lends books to the whole town"_s,
                           u"well yes of course you are right"_s,
                           u"books in the library are old"_s,
                           u"it rained all day again"_s,
                           u"the town loves the library and its books"_s,
                           u"well yes of course you are right"_s,
                           u"my dog was hungry"_s,
                           u"she came by train"_s,
                           u"well yes of course you are right"_s};
    std::vector<Segment> segments;
    for (const QString &text : said)
        segments.push_back(spoken(int(segments.size()), qint64(segments.size()) * 60000, text));
    EXPECT_EQ(extractSummary(cleanSentences(segments)).sentences,
              (QStringList{u"The library lends books to the whole town."_s,
                           u"The town loves the library and its books."_s}));
}

TEST(Summary, sentencesOfDutyAreTasks)
{
    const std::vector<Sentence> sentences = cleanSentences({spoken(0, 0, u"we need to repair the roof"_s),
                                                            spoken(1, 60000, u"the roof was red"_s),
                                                            spoken(2, 120000, u"please send me the text"_s)});
    EXPECT_EQ(extractSummary(sentences).tasks,
              (QStringList{u"We need to repair the roof."_s, u"Please send me the text."_s}));
}

TEST(Summary, ofNothingIsEmpty)
{
    EXPECT_TRUE(extractSummary({}).sentences.isEmpty());
}

} // namespace engine
