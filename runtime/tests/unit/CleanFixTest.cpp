#include "text/CleanFix.h"

#include "text/Words.h"

#include "Support.h"

using namespace Qt::StringLiterals;

namespace engine {

namespace {

std::vector<Line> linesOf(const QStringList &texts)
{
    std::vector<Line> lines;
    for (const QString &text : texts)
        lines.push_back({0, 0, {}, text, {}});
    return lines;
}

struct Case
{
    const char *name;
    QStringList lines;
    size_t line;
    QString corrected;
    QString text;
    QString expected;
};

const QStringList greeting{u"good mourning how are you"_s, u"i am fine thanks"_s, u"see you on friday"_s};
const QString greetingText = u"Good mourning. How are you.\n\nI am fine thanks. See you on Friday.\n"_s;

// What was said with hesitation and numbers, and the text that the rules make of it.
const QStringList spontaneous{u"so i came on monday"_s, u"um we we met boris um at the the station"_s,
                              u"she paid twenty five euros for the ticket"_s, u"then we left"_s};
const QString spontaneousText =
    u"So I came on Monday. We met Boris at the station. She paid 25 euros for the ticket. Then we left.\n"_s;

const std::vector<Case> cases{
    {"aWordIsReplacedWithinItsSentence", greeting, 0, u"good morning how are you"_s, greetingText,
     u"Good morning. How are you.\n\nI am fine thanks. See you on Friday.\n"_s},
    {"theFirstWordKeepsItsCapital", greeting, 0, u"fine mourning how are you"_s, greetingText,
     u"Fine mourning. How are you.\n\nI am fine thanks. See you on Friday.\n"_s},
    {"aStopOfAnotherLanguageStaysBehindTheWordThatIsLastNow", {u"यह अच्छा है ना"_s, u"हाँ ठीक है"_s}, 0, u"यह अच्छा है"_s,
     u"यह अच्छा है ना। हाँ ठीक है।\n"_s, u"यह अच्छा है। हाँ ठीक है।\n"_s},
    {"signsAndCapitalsThatWereTypedAreTaken", greeting, 0, u"Good morning, Anna! How are you?"_s,
     greetingText, u"Good morning, Anna! How are you?\n\nI am fine thanks. See you on Friday.\n"_s},
    {"severalWordsForOne", greeting, 1, u"i am very well thanks"_s, greetingText,
     u"Good mourning. How are you.\n\nI am very well thanks. See you on Friday.\n"_s},
    {"wordsAtTheEndComeBeforeTheFullStop", greeting, 1, u"i am fine thanks a lot"_s, greetingText,
     u"Good mourning. How are you.\n\nI am fine thanks a lot. See you on Friday.\n"_s},
    {"wordsAtTheStartTakeTheCapital", greeting, 1, u"well i am fine thanks"_s, greetingText,
     u"Good mourning. How are you.\n\nWell i am fine thanks. See you on Friday.\n"_s},
    {"droppedWordsLeaveTheFullStop", greeting, 1, u"i am fine"_s, greetingText,
     u"Good mourning. How are you.\n\nI am fine. See you on Friday.\n"_s},
    {"aDroppedFirstWordLeavesItsCapitalAndParagraph", greeting, 2, u"you on friday"_s, greetingText,
     u"Good mourning. How are you.\n\nI am fine thanks. You on Friday.\n"_s},
    {"anEmptiedLineTakesItsSentenceAlong", greeting, 1, u""_s, greetingText,
     u"Good mourning. How are you.\n\nSee you on Friday.\n"_s},
    {"anEmptiedFirstLineLeavesNoBlank", greeting, 0, u""_s, greetingText,
     u"I am fine thanks. See you on Friday.\n"_s},
    {"aSignInAnEmptyFirstLineLeavesTheBeginning",
     {u""_s, u"see you on friday"_s},
     0,
     u"…"_s,
     u"— See you on Friday.\n"_s,
     u"— See you on Friday.\n"_s},
    {"aLineThatComesBackIsASentence",
     {u"good mourning how are you"_s, u""_s, u"see you on friday"_s},
     1,
     u"i am fine"_s,
     u"Good mourning. How are you. See you on Friday.\n"_s,
     u"Good mourning. How are you. I am fine. See you on Friday.\n"_s},
    {"theRightOneOfSeveral",
     {u"one yes"_s, u"of course"_s, u"two yes"_s, u"of course"_s, u"three yes"_s, u"of course"_s},
     3,
     u"of cause"_s,
     u"One yes. Of course.\n\nTwo yes. Of course.\n\nThree yes. Of course.\n"_s,
     u"One yes. Of course.\n\nTwo yes. Of cause.\n\nThree yes. Of course.\n"_s},
    {"ofAllTheSameTheOneAsFarIn",
     {u"yes"_s, u"yes"_s, u"yes"_s, u"yes"_s},
     2,
     u"no"_s,
     u"Yes. Yes. Yes. Yes.\n"_s,
     u"Yes. Yes. No. Yes.\n"_s},
    {"aTextOfAnotherHandIsLeftAlone", greeting, 1, u"i am well thanks"_s,
     u"We met and greeted each other.\n"_s, u"We met and greeted each other.\n"_s},
    {"whatTheUserWroteAroundItStays", greeting, 2, u"see you on monday"_s,
     u"My notes – keep!\r\n\r\n\t\"Good mourning\" (sic). I am fine, thanks: see you on Friday?! 🙂\r\n"_s,
     u"My notes – keep!\r\n\r\n\t\"Good mourning\" (sic). I am fine, thanks: see you on monday?! 🙂\r\n"_s},
    {"aShortLineThatIsNowhereNearIsNotFound",
     {u"the library lends books"_s, u"yes"_s, u"to the whole town"_s},
     1,
     u"no"_s,
     u"Yes we can. The library lends old books to every town.\n"_s,
     u"Yes we can. The library lends old books to every town.\n"_s},
    {"withoutCleaningItIsTheSame",
     {u"one too"_s, u"three"_s},
     0,
     u"one two"_s,
     u"one too\nthree\n"_s,
     u"one two\nthree\n"_s},
    {"unusualLetters",
     {u"straße 😀😀 עברית"_s, u"українська мова"_s},
     1,
     u"англійська мова"_s,
     u"Straße 😀😀 עברית. Українська мова.\n"_s,
     u"Straße 😀😀 עברית. Англійська мова.\n"_s},
    {"aDashIsNoWord",
     {u"yes but no"_s, u"end"_s},
     0,
     u"yes – but no"_s,
     u"Yes but no. End.\n"_s,
     u"Yes – but no. End.\n"_s},
    {"aNameOfTheTextItselfIsNotMadeSmall",
     {u"i am anna"_s, u"hello"_s},
     0,
     u"i am anna maria"_s,
     u"I am Anna. Hello.\n"_s,
     u"I am Anna maria. Hello.\n"_s},
    {"aLineThatHasLostItsHesitation", spontaneous, 1, u"um we we met doris um at the the station"_s, spontaneousText,
     u"So I came on Monday. We met doris at the station. She paid 25 euros for the ticket. Then we left.\n"_s},
    {"aWordBesideAHesitation", spontaneous, 1, u"um we we met boris um near the the station"_s, spontaneousText,
     u"So I came on Monday. We met Boris near the station. She paid 25 euros for the ticket. Then we left.\n"_s},
    {"aHesitationThatWasAWord", spontaneous, 1, u"um we we met boris tom at the the station"_s, spontaneousText,
     u"So I came on Monday. We met Boris tom at the station. She paid 25 euros for the ticket. Then we left.\n"_s},
    {"aLineWithANumberInFigures", spontaneous, 2, u"she paid twenty five dollars for the tickets"_s, spontaneousText,
     u"So I came on Monday. We met Boris at the station. She paid 25 dollars for the tickets. Then we left.\n"_s},
    {"theNumberItself", spontaneous, 2, u"she paid twenty nine euros for the ticket"_s, spontaneousText,
     u"So I came on Monday. We met Boris at the station. She paid twenty nine euros for the ticket. Then we left.\n"_s},
    {"severalWordsAround", spontaneous, 1, u"um we we met boris and eve um at the old station"_s, spontaneousText,
     u"So I came on Monday. We met Boris and eve at the old station. She paid 25 euros for the ticket. Then we left.\n"_s},
    {"theEndOfSuchALine", spontaneous, 1, u"um we we met boris um at the the airport"_s, spontaneousText,
     u"So I came on Monday. We met Boris at the airport. She paid 25 euros for the ticket. Then we left.\n"_s},
    {"onlyTheHesitation", spontaneous, 1, u"we we met boris at the the station"_s, spontaneousText, spontaneousText},
    {"aLineOfWhichTheTextHasOtherWords", spontaneous, 1, u"um we we met doris um at the the station"_s,
     u"They told of a journey. It was cheap, and Boris met them.\n"_s,
     u"They told of a journey. It was cheap, and Boris met them.\n"_s},
    {"aLetterOfATextWithoutBlanks", {u"我们 星期五 见面"_s, u"好的 谢谢"_s}, 0, u"我们 星期六 见面"_s,
     u"我们星期五见面。好的谢谢。\n"_s, u"我们星期六见面。好的谢谢。\n"_s},
    {"lettersMoreInATextWithoutBlanks", {u"我们 星期五 见面"_s, u"好的 谢谢"_s}, 0, u"我们下个星期五 见面"_s,
     u"我们星期五见面。好的谢谢。\n"_s, u"我们下个星期五见面。好的谢谢。\n"_s},
    {"lettersLessInATextWithoutBlanks", {u"我们下个星期五 见面"_s, u"好的 谢谢"_s}, 0, u"我们 星期五"_s,
     u"我们下个星期五见面。好的谢谢。\n"_s, u"我们星期五。好的谢谢。\n"_s},
    {"anEmptiedChineseLineThatComesBack", {u"我们走"_s, u""_s, u"好的谢谢"_s}, 1, u"现在"_s, u"我们走。好的谢谢。\n"_s,
     u"我们走。现在。好的谢谢。\n"_s},
    {"theOnlyLine", {u"um good mourning"_s}, 0, u"um good morning"_s, u"Good mourning.\n"_s, u"Good morning.\n"_s},
    {"ofTwoSuchLinesTheRightOne",
     {u"um we saw the the bride"_s, u"then it rained"_s, u"um we saw the the bride"_s, u"and it was cold"_s},
     2,
     u"um we saw the the bridge"_s,
     u"We saw the bride. Then it rained. We saw the bride. And it was cold.\n"_s,
     u"We saw the bride. Then it rained. We saw the bridge. And it was cold.\n"_s},
};

class CleanFix : public testing::TestWithParam<Case>
{
};

} // namespace

TEST_P(CleanFix, carriesTheCorrectionOver)
{
    const Case &c = GetParam();
    EXPECT_EQ(withCorrectedLine(c.text, linesOf(c.lines), c.line, c.corrected), c.expected);
}

INSTANTIATE_TEST_SUITE_P(Tables, CleanFix, testing::ValuesIn(cases),
                         [](const auto &given) { return std::string(given.param.name); });

TEST(CleanFixLong, aLongLineIsDoneInTime)
{
    QString line;
    while (line.size() < 100'000)
        line += u"word%1 "_s.arg(line.size());
    line.chop(1);
    const std::vector<Line> lines = linesOf({u"before"_s, line, u"behind"_s});
    const QString text = u"Before. "_s + line + u". Behind.\n"_s;
    QString other = line;
    other.replace(u"word0 "_s, u"first "_s);
    EXPECT_EQ(withCorrectedLine(text, lines, 1, other), u"Before. "_s + other + u". Behind.\n"_s);
    EXPECT_EQ(withCorrectedLine(text, lines, 1, u"short"_s), u"Before. short. Behind.\n"_s);
}

} // namespace engine
