#include "text/CleanText.h"
#include "text/Summary.h"
#include "text/Words.h"

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
    const std::vector<Sentence> sentences = cleanSentences(segments, u"en"_s);
    EXPECT_EQ(texts(sentences), (QStringList{u"Good morning."_s, u"How are you?"_s, u"Fine."_s}));
    EXPECT_EQ(sentences[1].startMs, 1600);
    EXPECT_EQ(sentences[1].endMs, 2500);
    EXPECT_EQ(paragraphs(sentences), u"Good morning. How are you?\n\nFine.\n"_s);
}

TEST(CleanText, aCutWithoutAPauseEndsNothing)
{
    const std::vector<Segment> segments{spoken(0, 0, u"one two"_s), spoken(1, 650, u"three"_s)};
    EXPECT_EQ(texts(cleanSentences(segments, u"en"_s)), QStringList{u"One two three."_s});
}

TEST(CleanText, capitalsStandWhereEnglishWantsThem)
{
    EXPECT_EQ(texts(cleanSentences({spoken(0, 0, u"on friday i think i'm late in june"_s)}, u"en"_s)),
              QStringList{u"On Friday I think I'm late in June."_s});
}

TEST(CleanText, otherLanguagesKeepEveryWord)
{
    const Segment segment = spoken(0, 0, u"um we we will twenty three | er go there | why is i"_s);
    const QString clean = texts(cleanSentences({segment}, u"de"_s)).join(u' ').toLower().remove(u'.');
    EXPECT_EQ(clean, segment.text());
}

TEST(CleanText, soundsOfHesitationGoInOtherLanguagesToo)
{
    const std::vector<std::pair<QString, QStringList>> cases{
        {u"de"_s, {u"Ähm, ich weiß äh nicht. Ja."_s, u"Ich weiß nicht."_s, u"Ja."_s}},
        {u"de"_s, {u"Es geht um, ähm. Zehn Uhr."_s, u"Es geht um."_s, u"Zehn Uhr."_s}},
        {u"fr"_s, {u"Oui, euh, je viens."_s, u"Oui, je viens."_s}},
        {u"ru"_s, {u"Э, он эм ушёл."_s, u"Он ушёл."_s}},
        {u"ja"_s, {u"はい。 でも、"_s, u"はい。"_s, u"でも。"_s}},
        {u"de"_s, {u"Ähm."_s, u"Ähm."_s}}};
    for (const auto &[language, rows] : cases)
        EXPECT_EQ(texts(cleanSentences({spoken(0, 0, rows[0])}, language)), rows.mid(1));
}

TEST(CleanText, chineseSentencesStandWithoutABlankBetweenThem)
{
    const std::vector<Sentence> sentences = cleanSentences({spoken(0, 0, u"你好。 我们 走。 Yes. 好。"_s)}, u"zh"_s);
    EXPECT_EQ(paragraphs(sentences), u"你好。我们走。 Yes. 好。\n"_s);
}

TEST(CleanText, speakersStartParagraphs)
{
    Segment first = spoken(0, 0, u"we will see the"_s);
    Segment second = spoken(1, 1250, u"the end"_s);
    first.speaker = u"Anna"_s;
    second.speaker = u"Boris"_s;
    EXPECT_EQ(paragraphs(cleanSentences({first, second}, u"en"_s)), u"We will see the.\n\nThe end.\n"_s);
}

TEST(CleanText, marksOfTheRecogniserEndSentences)
{
    const Segment segment = spoken(0, 0, u"Hello, | Anna. Um, how are you? I was there at 9"_s);
    EXPECT_EQ(texts(cleanSentences({segment}, u"en"_s)),
              (QStringList{u"Hello, Anna."_s, u"How are you?"_s, u"I was there at 9."_s}));
}

namespace {

// A stretch of speech with the marks that recognisers write in its language.
struct MarksCase
{
    const char *language;
    const char *heard; // "|" is a pause that ends a sentence only where there are no marks
    QStringList sentences;
};

const MarksCase marksCases[] = {
    {"hi", "यह अच्छा | है। हाँ", {u"यह अच्छा है।"_s, u"हाँ।"_s}},
    {"hi", "राम आया॥ हाँ", {u"राम आया॥"_s, u"हाँ।"_s}},
    {"ar", "أين | هو؟ هنا،", {u"أين هو؟"_s, u"هنا."_s}},
    {"ur", "وہ یہاں | ہے۔", {u"وہ یہاں ہے۔"_s}},
    {"zh", "你好。 我们 | 走，", {u"你好。"_s, u"我们走。"_s}},
    {"zh", "你好。 我 有 iPhone 手机 了", {u"你好。"_s, u"我有 iPhone 手机了。"_s}},
    {"ja", "はい。 でも、", {u"はい。"_s, u"でも。"_s}},
    {"th", "สวัสดี ครับ", {u"สวัสดี ครับ"_s}},
    {"el", "Ναι. Πού είναι;", {u"Ναι."_s, u"Πού είναι;"_s}},
    {"de", "Gut. Um 9 a.m.,", {u"Gut."_s, u"Um 9 a.m."_s}},
    {"de", "Er kam vom 3. bis 5. Mai. Dann ging er.", {u"Er kam vom 3. bis 5. Mai."_s, u"Dann ging er."_s}},
    {"de", "Im 19. und 20. Jahrhundert usw. und so weiter.", {u"Im 19. und 20. Jahrhundert usw. und so weiter."_s}},
    {"de", "Ich... ich weiß. „Wirklich?“ fragte sie.", {u"Ich... ich weiß."_s, u"„Wirklich?“ fragte sie."_s}},
    {"de", "Es war 2019. Dann kam Dr. Meier, ca. Zehn Tage.", {u"Es war 2019."_s, u"Dann kam Dr. Meier, ca. Zehn Tage."_s}},
    {"en", "We left at 9. Then Mr. J. Smith came. Am I? Yes.",
     {u"We left at 9."_s, u"Then Mr. J. Smith came."_s, u"Am I?"_s, u"Yes."_s}},
    {"en", "Look. iPhone users | know it,", {u"Look. iPhone users know it."_s}},
    {"en", "yes. we | came: no. he said", {u"Yes."_s, u"We came: no."_s, u"He said."_s}},
    {"ru", "Это рядом, т. е. мы пришли. Да.", {u"Это рядом, т. е. мы пришли."_s, u"Да."_s}},
    {"fr", "Le pain, etc. et le vin. Oui", {u"Le pain, etc. et le vin."_s, u"Oui."_s}},
    {"en", "Yes. The the door. Um, er, no.", {u"Yes."_s, u"The door."_s, u"No."_s}},
    {"en", "Yes. He said:", {u"Yes."_s, u"He said."_s}},
    {"en", "Yes. Are you there,", {u"Yes."_s, u"Are you there?"_s}},
    {"en", "Yes. Well -", {u"Yes."_s, u"Well."_s}},
    {"ka", "კი. არა", {u"კი."_s, u"არა."_s}},
};

} // namespace

TEST(CleanText, marksAreThoseOfTheLanguage)
{
    for (const MarksCase &row : marksCases) {
        const Segment segment = spoken(0, 0, QString::fromUtf8(row.heard));
        EXPECT_EQ(texts(cleanSentences({segment}, QString::fromUtf8(row.language))), row.sentences) << row.heard;
    }
}

TEST(CleanText, aHesitationIsNoPause)
{
    const Segment segment = spoken(0, 0, u"we | um | went home"_s, 400);
    EXPECT_EQ(texts(cleanSentences({segment}, u"en"_s)), QStringList{u"We went home."_s});
}

TEST(CleanText, nothingButHesitationStays)
{
    EXPECT_EQ(texts(cleanSentences({spoken(0, 0, u"um er"_s)}, u"en"_s)), QStringList{u"Um er."_s});
}

// What is said, and what is written for it.
struct EnglishCase
{
    const char *said;
    const char *written;
};

void PrintTo(const EnglishCase &one, std::ostream *out)
{
    *out << one.said;
}

class English : public testing::TestWithParam<EnglishCase>
{
};

TEST_P(English, isWrittenAsPeopleWriteIt)
{
    const Segment segment = spoken(0, 0, QString::fromUtf8(GetParam().said));
    EXPECT_EQ(texts(cleanSentences({segment}, u"en"_s)).join(u' '), QString::fromUtf8(GetParam().written));
}

INSTANTIATE_TEST_SUITE_P(
    Figures, English,
    testing::Values(EnglishCase{"we have twenty three cats", "We have 23 cats."},
                    EnglishCase{"one of them came", "One of them came."},
                    EnglishCase{"nine people and ten dogs", "Nine people and 10 dogs."},
                    EnglishCase{"one hundred and five people", "105 people."},
                    EnglishCase{"a hundred people", "A hundred people."},
                    EnglishCase{"a hundred and twenty people", "120 people."},
                    EnglishCase{"twelve thousand three hundred and forty five", "12,345."},
                    EnglishCase{"three hundred thousand of them", "300,000 of them."},
                    EnglishCase{"about two million people", "About 2 million people."},
                    EnglishCase{"it was nineteen ninety nine", "It was 1999."},
                    EnglishCase{"in nineteen oh five", "In 1905."},
                    EnglishCase{"since twenty twenty four", "Since 2024."},
                    EnglishCase{"in two thousand and five", "In 2005."},
                    EnglishCase{"in eighteen hundred", "In 1800."},
                    EnglishCase{"five percent of it", "5% of it."},
                    EnglishCase{"three point five per cent", "3.5%."},
                    EnglishCase{"zero point two five of it", "0.25 of it."},
                    EnglishCase{"we met at half past nine", "We met at 9:30."},
                    EnglishCase{"at nine thirty he left", "At 9:30 he left."},
                    EnglishCase{"a quarter to one", "12:45."},
                    EnglishCase{"ten past seven", "7:10."},
                    EnglishCase{"it's twenty to eight", "It's 7:40."},
                    EnglishCase{"from twenty to nine", "From 20 to nine."},
                    EnglishCase{"at nine oh five p m", "At 9:05 p.m."},
                    EnglishCase{"come at nine am please", "Come at 9 a.m. please."},
                    EnglishCase{"at five o'clock", "At 5 o'clock."},
                    EnglishCase{"the twenty first century", "The 21st century."},
                    EnglishCase{"a twenty second break", "A 20 second break."},
                    EnglishCase{"eighteen nineteen twenty", "18 19 20."},
                    EnglishCase{"one two three", "One two three."},
                    EnglishCase{"twenty four seven", "Twenty four seven."},
                    EnglishCase{"fifty fifty", "Fifty fifty."},
                    EnglishCase{"twenty | three", "20. Three."}, EnglishCase{"five to ten minutes", "Five to ten minutes."},
                    EnglishCase{"nine or ten of them", "Nine or ten of them."},
                    EnglishCase{"ten to fifteen people", "10 to 15 people."},
                    EnglishCase{"twenty one of them", "21 of them."},
                    EnglishCase{"one point five million people", "1.5 million people."},
                    EnglishCase{"half past three", "3:30."}, EnglishCase{"half of them", "Half of them."},
                    EnglishCase{"no one knows", "No one knows."}, EnglishCase{"for one thing", "For one thing."}));

INSTANTIATE_TEST_SUITE_P(
    Measures, English,
    testing::Values(EnglishCase{"it's five to ten minutes", "It's five to ten minutes."},
                    EnglishCase{"it rose by five to ten percent", "It rose by five to 10%."},
                    EnglishCase{"at five to ten dollars", "At five to ten dollars."},
                    EnglishCase{"by five to ten people", "By five to ten people."},
                    EnglishCase{"by five to ten", "By 9:55."},
                    EnglishCase{"two fifteen minute breaks", "Two fifteen minute breaks."},
                    EnglishCase{"it takes ten fifteen minutes", "It takes 10 15 minutes."},
                    EnglishCase{"at nine fifteen we left", "At 9:15 we left."},
                    EnglishCase{"twenty thirty people", "20 30 people."},
                    EnglishCase{"at nine thirty people came", "At 9:30 people came."},
                    EnglishCase{"in nineteen ninety nine people came", "In 1999 people came."},
                    EnglishCase{"at one point one of them left", "At one point one of them left."},
                    EnglishCase{"at one point five percent", "At 1.5%."},
                    EnglishCase{"about hundred and fifty of them", "About 150 of them."},
                    EnglishCase{"thousand and one nights", "1001 nights."},
                    EnglishCase{"some hundred people", "Some hundred people."},
                    EnglishCase{"several hundred people", "Several hundred people."}));

INSTANTIATE_TEST_SUITE_P(
    DatesAndTelephones, English,
    testing::Values(EnglishCase{"on june fifth", "On June 5th."}, EnglishCase{"by june first", "By June 1st."},
                    EnglishCase{"the third of may", "The 3rd of May."},
                    EnglishCase{"the twenty second of march", "The 22nd of March."},
                    EnglishCase{"on may second", "On May 2nd."}, EnglishCase{"we may second that", "We may second that."},
                    EnglishCase{"the twelfth of august", "The 12th of August."},
                    EnglishCase{"the first of them", "The first of them."},
                    EnglishCase{"call five five five one two three four", "Call 555-1234."},
                    EnglishCase{"it is two one two five five five oh one nine nine", "It is 212-555-0199."},
                    EnglishCase{"zero three oh two two four four five nine one six", "03022445916."},
                    EnglishCase{"one two three four five six seven", "One two three four five six seven."},
                    EnglishCase{"oh one of them", "Oh one of them."}));

INSTANTIATE_TEST_SUITE_P(
    Hesitation, English,
    testing::Values(EnglishCase{"um we uh went", "We went."}, EnglishCase{"the the door", "The door."},
                    EnglishCase{"we saw the | the end", "We saw the. The end."},
                    EnglishCase{"i i think i think so", "I think so."},
                    EnglishCase{"it was you know difficult", "It was difficult."},
                    EnglishCase{"as you know it rains", "As you know it rains."},
                    EnglishCase{"i hope you know that", "I hope you know that."},
                    EnglishCase{"a very very good no no", "A very very good no no."},
                    EnglishCase{"i know that that is so", "I know that that is so."}));

INSTANTIATE_TEST_SUITE_P(
    Capitals, English,
    testing::Values(EnglishCase{"the german team from london", "The German team from London."},
                    EnglishCase{"europe's polish and turkey", "Europe's polish and turkey."},
                    EnglishCase{"i think i'd go and i'll stay", "I think I'd go and I'll stay."},
                    EnglishCase{"on sundays i'd rest", "On Sundays I'd rest."},
                    EnglishCase{"monday's train in may", "Monday's train in May."},
                    EnglishCase{"we may march home", "We may march home."},
                    EnglishCase{"on may twenty third", "On May 23rd."}));

INSTANTIATE_TEST_SUITE_P(
    Questions, English,
    testing::Values(EnglishCase{"how many people are on the team", "How many people are on the team?"},
                    EnglishCase{"can you tell us more", "Can you tell us more?"},
                    EnglishCase{"and what has to be done", "And what has to be done?"},
                    EnglishCase{"when will it be ready", "When will it be ready?"},
                    EnglishCase{"when i was young it rained", "When I was young it rained."},
                    EnglishCase{"what is clear is that we go", "What is clear is that we go."},
                    EnglishCase{"which was very good", "Which was very good."},
                    EnglishCase{"do that again", "Do that again."},
                    EnglishCase{"should you need help call me", "Should you need help call me."},
                    EnglishCase{"so do i", "So do I."}, EnglishCase{"is the plan ready", "Is the plan ready?"},
                    EnglishCase{"it is late isn't it", "It is late isn't it?"},
                    EnglishCase{"who went there", "Who went there."}));

struct LinesCase
{
    const char *name;
    QString language;
    QStringList said;
    QStringList written;
};

class AsLines : public testing::TestWithParam<LinesCase>
{
};

TEST_P(AsLines, haveTheCapitalsThatNobodyWrote)
{
    std::vector<Segment> segments;
    for (const QString &line : GetParam().said) {
        Segment &segment = segments.emplace_back();
        segment.words.emplace();
        for (const QString &word : wordsOf(line))
            segment.words->push_back({word, 0, 1});
    }
    QStringList written;
    for (const Segment &segment : asLines(segments, GetParam().language))
        written.append(segment.text());
    EXPECT_EQ(written, GetParam().written);
}

INSTANTIATE_TEST_SUITE_P(
    CleanText, AsLines,
    testing::Values(
        LinesCase{"english", u"en"_s, {u"so i came on monday"_s, u""_s, u"i'm glad you did"_s},
                  {u"So I came on Monday"_s, u""_s, u"I'm glad you did"_s}},
        LinesCase{"another", u"es"_s, {u"el lunes i el martes"_s}, {u"El lunes i el martes"_s}},
        LinesCase{"written", u"en"_s, {u"and then"_s, u"Anna said yes on monday"_s},
                  {u"and then"_s, u"Anna said yes on monday"_s}},
        LinesCase{"withoutCapitals", u"zh"_s, {u"\u4f60\u597d"_s}, {u"\u4f60\u597d"_s}}),
    [](const auto &each) { return std::string(each.param.name); });

TEST(CleanText, nothingSaidGivesNothing)
{
    Segment silent;
    silent.words.emplace();
    const std::vector<Segment> segments{silent, Segment()};
    EXPECT_TRUE(cleanSentences(segments, u"en"_s).empty());
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
    EXPECT_EQ(extractSummary(cleanSentences(segments, u"en"_s), u"en"_s).sentences,
              (QStringList{u"The library lends books to the whole town."_s,
                           u"The town loves the library and its books."_s}));
}

TEST(Summary, everydayWordsOfOtherLanguagesTellNothing)
{
    QStringList said;
    for (const QString &word : {u"hund"_s, u"baum"_s, u"tisch"_s, u"zug"_s, u"berg"_s, u"fluss"_s, u"garten"_s, u"himmel"_s})
        said.append(u"und das ist nicht das was wir für einen %1 gehalten haben"_s.arg(word));
    said.append(u"die bücherei verleiht bücher"_s);
    said.append(u"bücher der bücherei sind alt"_s);
    std::vector<Sentence> sentences;
    for (const QString &text : said)
        sentences.push_back({text, qint64(sentences.size()) * 5000, 0});
    EXPECT_EQ(extractSummary(sentences, u"de"_s).sentences, (QStringList{said[8], said[9]}));
}

TEST(Summary, chineseSentencesAreTiedByWhatTheyTellOf)
{
    const QStringList said{u"今天天气很好我很高兴。"_s,  u"图书馆借书给全城的人。"_s, u"他昨天坐火车来的。"_s,
                           u"图书馆里的书很旧。"_s,      u"我的狗已经饿了一天。"_s,   u"全城的人都喜欢图书馆。"_s,
                           u"明年春天再去海边旅行。"_s};
    std::vector<Sentence> sentences;
    for (const QString &text : said)
        sentences.push_back({text, qint64(sentences.size()) * 5000, 0});
    EXPECT_EQ(extractSummary(sentences, u"zh"_s).sentences, (QStringList{said[1], said[5]}));
}

TEST(Summary, sentencesOfDutyAreTasks)
{
    const std::vector<Sentence> sentences = cleanSentences({spoken(0, 0, u"we need to repair the roof"_s),
                                                            spoken(1, 60000, u"the roof was red"_s),
                                                            spoken(2, 120000, u"please send me the text"_s)},
                                                           u"en"_s);
    EXPECT_EQ(extractSummary(sentences, u"en"_s).tasks,
              (QStringList{u"We need to repair the roof."_s, u"Please send me the text."_s}));
}

TEST(Summary, ofNothingIsEmpty)
{
    EXPECT_TRUE(extractSummary({}, u"en"_s).sentences.isEmpty());
}

} // namespace engine
