#include "text/ModelWriting.h"

#include "text/ModelCheck.h"

#include "Support.h"

using namespace Qt::StringLiterals;

namespace engine {

namespace {

std::vector<Sentence> longTalk(int sentences)
{
    std::vector<Sentence> talk;
    for (int i = 0; i < sentences; ++i)
        talk.push_back({u"Sentence number %1 tells something about part %2 of the school."_s.arg(1000 + i).arg(i % 20), i * 5000,
                        i * 5000 + 4000, i % 5 == 0});
    return talk;
}

void showNothing(int, int) {}

} // namespace

struct CheckCase
{
    const char *said;
    const char *written;
    bool kept;
    const char *language = "en";
};

void PrintTo(const CheckCase &one, std::ostream *out)
{
    *out << one.written;
}

class ModelCheck : public testing::TestWithParam<CheckCase>
{
};

TEST_P(ModelCheck, takesOnlyWhatWasSaid)
{
    const CheckCase &one = GetParam();
    EXPECT_EQ(keepsWhatWasSaid(QString::fromUtf8(one.said), QString::fromUtf8(one.written),
                               QString::fromUtf8(one.language)),
              one.kept);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, ModelCheck,
    testing::Values(
        CheckCase{"we need to send the report by friday", "We need to send the report by Friday.", true},
        CheckCase{"那个我们星期五 要发送报告", "我们星期五要发送报告。", true, "zh"},
        CheckCase{"我们星期五要发送报告", "我们星期五要发送合同。", false, "zh"},
        CheckCase{"我们星期五要发送报告", "我们星期五不要发送报告。", false, "zh"},
        CheckCase{"我们星期五要发送报告", "我们星期五。", false, "zh"},
        CheckCase{"えっと メールを送りません 明日", "メールを送りません、明日。", true, "ja"},
        CheckCase{"メールを送りません 明日", "メールを送ります、明日。", false, "ja"},
        CheckCase{"メールを送ります 明日", "ファックスを送ります、明日。", false, "ja"},
        CheckCase{"we needs sending the reports by friday", "We need to send the report by Friday.", true},
        CheckCase{"we met at nine and left", "We met at 9 and left.", true},
        CheckCase{"we met at nine and left", "We met at 8 and left.", false},
        CheckCase{"we met at nine and left", "We met Boris at 9 and left.", false},
        CheckCase{"the money came from the bank in winter", "The money came.", false},
        CheckCase{"the money came from the bank", "The money never came from the bank.", false},
        CheckCase{"the money didn't come", "The money did come.", false},
        CheckCase{"the money came", "", false},
        CheckCase{"мы поехали домой вечером", "Мы поехали домой вечером.", true, "ru"},
        CheckCase{"мы поехали домой вечером", "Мы поехали на работу вечером.", false, "ru"}));

// What denies comes and goes in no sentence, whatever the sentences around it deny.
INSTANTIATE_TEST_SUITE_P(
    Denials, ModelCheck,
    testing::Values(
        CheckCase{"we can't wait and the money came early", "We can't wait, and the money did not come early.", false},
        CheckCase{"he did not come but she did", "He did come, but she did not.", false},
        CheckCase{"we left without the money", "We left with the money.", false},
        CheckCase{"there is no money left", "There is money left.", false},
        CheckCase{"it isn't here and i can't see it", "It is not here, and I cannot see it.", true},
        CheckCase{"i don't i don't know the place", "I don't know the place.", true},
        CheckCase{"no no the money came", "No, the money came.", true},
        CheckCase{"it is not that it's not good", "It is that it's not good.", false},
        CheckCase{"not not the money came", "The money came.", false},
        CheckCase{"das geld ist nicht gekommen und wir haben gewartet", "Das Geld ist gekommen, und wir haben gewartet.",
                  false, "de"},
        CheckCase{"wir haben kein geld", "Wir haben Geld.", false, "de-CH"},
        CheckCase{"wir haben das nicht gesehen", "Wir haben das nicht gesehen.", true, "de"},
        CheckCase{"on sait où il est", "On ne sait pas où il est.", false, "fr"},
        CheckCase{"je sais pas où il est", "Je ne sais pas où il est.", true, "fr"},
        CheckCase{"el dinero llegó ayer", "El dinero no llegó ayer.", false, "es"},
        CheckCase{"il denaro è arrivato", "Il denaro non è arrivato.", false, "it"},
        CheckCase{"o dinheiro não chegou", "O dinheiro chegou.", false, "pt"},
        CheckCase{"het geld is niet gekomen", "Het geld is gekomen.", false, "nl"},
        CheckCase{"pieniądze przyszły wczoraj", "Pieniądze nie przyszły wczoraj.", false, "pl"},
        CheckCase{"мы поехали домой вечером", "Мы не поехали домой вечером.", false, "ru"},
        CheckCase{"ми не поїхали додому ввечері", "Ми поїхали додому ввечері.", false, "uk"},
        CheckCase{"ми не поїхали додому ввечері", "Ми не поїхали додому ввечері.", true, "uk"}));

TEST(ModelWriting, partsAreAskedOneByOneAndNothingIsLost)
{
    const std::vector<Sentence> talk = longTalk(200);
    QString asked;
    std::vector<int> shown;
    const QString text = polishedText(
        talk, u"en"_s,
        [&](const ModelQuestion &question) {
            asked += question.text + u' ';
            return std::optional(u"<think>Well.</think>\n"_s + question.text);
        },
        [&](int done, int total) {
            EXPECT_EQ(done, int(shown.size()));
            shown.push_back(total);
        });
    EXPECT_GT(shown.size(), 2);
    EXPECT_EQ(shown.back(), int(shown.size()));
    EXPECT_EQ(text, paragraphs(talk));
    for (const Sentence &sentence : talk)
        EXPECT_EQ(asked.count(sentence.text), 1);
}

TEST(ModelWriting, aPartThatTheModelGotWrongStaysByTheRules)
{
    const std::vector<Sentence> talk = longTalk(100);
    int asked = 0;
    const QString text = polishedText(
        talk, u"en"_s,
        [&](const ModelQuestion &question) -> std::optional<QString> {
            ++asked;
            return asked == 1 ? u"All was invented."_s : asked == 2 ? question.text.toUpper() : question.text;
        },
        &showNothing);
    EXPECT_GT(asked, 2);
    EXPECT_TRUE(text.startsWith(talk.front().text));
    EXPECT_TRUE(text.contains(u"SENTENCE NUMBER"));
    EXPECT_TRUE(text.endsWith(talk.back().text + u'\n'));
}

TEST(ModelWriting, summariesOfPartsBecomeOne)
{
    int asked = 0;
    const auto written = writtenSummary(
        longTalk(200), u"en"_s,
        [&](const ModelQuestion &question) {
            ++asked;
            const bool together = question.text == u"Part 1.\nPart 2.\nPart 3."_s;
            return std::optional(
                together ? uR"({"title": "School", "summary": ["All."], "tasks": []})"_s
                         : uR"({"title": "t", "summary": ["Part %1."], "tasks": ["Do %1."]})"_s.arg(asked));
        },
        &showNothing);
    ASSERT_TRUE(written);
    EXPECT_EQ(asked, 4);
    EXPECT_EQ(written->title, u"School"_s);
    EXPECT_EQ(written->summary.sentences, QStringList{u"All."_s});
    EXPECT_EQ(written->summary.tasks, (QStringList{u"Do 1."_s, u"Do 2."_s, u"Do 3."_s}));
    EXPECT_TRUE(written->summary.missing.isEmpty());
}

// Of an hour and more: the summaries of the parts have no room in one question.
TEST(ModelWriting, manyPartsAreJoinedInLevels)
{
    int asked = 0;
    int joined = 0;
    int last = -1;
    const auto written = writtenSummary(
        longTalk(1000), u"en"_s,
        [&](const ModelQuestion &question) {
            ++asked;
            EXPECT_LT(question.text.size(), 8000);
            const bool together = question.text.startsWith(u"Rooms"_s);
            joined += together ? 1 : 0;
            QStringList sentences;
            for (int i = 0; i < (together ? 2 : 15); ++i)
                sentences.append(u"\"Rooms and the school and what they are for %1.\""_s.arg(QString(asked, u'x') + QString(i, u'y')));
            return std::optional(u"{\"summary\": ["_s + sentences.join(u", "_s) + u"]}"_s);
        },
        [&](int done, int total) {
            EXPECT_GE(done, last);
            EXPECT_LT(done, total);
            last = done;
        });
    ASSERT_TRUE(written);
    EXPECT_GT(joined, 2);
    EXPECT_EQ(written->summary.sentences.size(), 2);
    EXPECT_TRUE(written->summary.missing.isEmpty());
}

TEST(ModelWriting, partsThatCouldNotBeJoinedAreToldOf)
{
    const auto written = writtenSummary(
        longTalk(200), u"en"_s,
        [&](const ModelQuestion &question) {
            return question.text.startsWith(u"Rooms"_s)
                       ? std::nullopt
                       : std::optional(uR"({"summary": ["Rooms %1."]})"_s.arg(question.text.left(30)));
        },
        &showNothing);
    ASSERT_TRUE(written);
    EXPECT_EQ(written->summary.sentences.size(), 3);
    ASSERT_EQ(written->summary.missing.size(), 1);
    EXPECT_TRUE(filled(written->summary.missing[0]).startsWith(u"The summaries of the parts could not be made one"));
}

// An answer in another shape than the one that was asked for.
struct ShapeCase
{
    const char *answer;
    QStringList sentences;
    QStringList tasks;
};

TEST(ModelWriting, answersOfOtherShapesAreTaken)
{
    const QString school = u"The school is told of."_s;
    const QString rooms = u"A part of the school, no. 3, is told of."_s;
    const QString big = u"The school is "_s + QString(350, u'x') + u"."_s;
    const ShapeCase cases[] = {
        {R"({"summary": "The school is told of. A part of the school, no. 3, is told of."})", {school, rooms}, {}},
        {R"({"summary": "- The school is told of.\n- A part of the school, no. 3, is told of."})", {school, rooms}, {}},
        {R"({"summary": [{"sentence": "The school is told of."}], "tasks": [{"task": "Tell of the school.",
             "person": null, "date": "part 3"}, {"person": "none", "task": "Do it"}]})",
         {school},
         {u"Tell of the school. (part 3)"_s, u"Do it"_s}},
        {R"({"summary": ["The school is told of."], "tasks": "Tell of it. Do it."})", {school}, {u"Tell of it."_s, u"Do it."_s}},
        {R"({"summary": ["%BIG %BIG"]})", {big}, {}},
    };
    for (const ShapeCase &row : cases) {
        const QString answer = QString::fromUtf8(row.answer).replace(u"%BIG"_s, big);
        const auto written = writtenSummary(
            longTalk(5), u"en"_s, [&](const ModelQuestion &) { return std::optional(answer); }, &showNothing);
        ASSERT_TRUE(written) << row.answer;
        EXPECT_EQ(written->summary.sentences, row.sentences) << row.answer;
        EXPECT_EQ(written->summary.tasks, row.tasks) << row.answer;
    }
}

TEST(ModelWriting, theSummaryIsAskedForWithTheSpeakers)
{
    QString asked;
    writtenSummary({{u"We need a roof."_s, 0, 1000, true, u"Speaker 1"_s},
                    {u"Yes."_s, 1500, 2000, false, u"Speaker 1"_s},
                    {u"I will build it."_s, 3000, 4000, true, u"Bo"_s}},
                   u"en"_s,
                   [&](const ModelQuestion &question) {
                       asked = question.text;
                       return std::optional(uR"({"summary": ["Bo builds a roof."]})"_s);
                   },
                   &showNothing);
    EXPECT_EQ(asked, u"Speaker 1: We need a roof. Yes.\n\nBo: I will build it."_s);
}

TEST(ModelWriting, aPartWithoutAnAnswerIsToldOf)
{
    int asked = 0;
    const auto written = writtenSummary(
        longTalk(200), u"en"_s,
        [&](const ModelQuestion &) -> std::optional<QString> {
            return ++asked == 2 ? u"garbage"_s : uR"({"summary": ["Said %1."]})"_s.arg(asked);
        },
        &showNothing);
    ASSERT_TRUE(written);
    ASSERT_EQ(written->summary.missing.size(), 1);
    EXPECT_TRUE(filled(written->summary.missing[0]).startsWith(u"What was said from 00:0"));
}

struct NameCase
{
    const char *language;
    const char *said;
    const char *written;
    bool kept;
};

void PrintTo(const NameCase &one, std::ostream *out)
{
    *out << one.written;
}

class SummaryCheck : public testing::TestWithParam<NameCase>
{
};

TEST_P(SummaryCheck, letsNoNumberAndNoNameIn)
{
    const NameCase &one = GetParam();
    const Vocabulary said(comparableWords(QString::fromUtf8(one.said)));
    EXPECT_EQ(namesOnlyWhatWasSaid(QString::fromUtf8(one.written), said, QString::fromUtf8(one.language)), one.kept);
}

constexpr const char *school = "We met Anna's team in June. The school costs 12,500 euros, twenty five rooms are done.";

INSTANTIATE_TEST_SUITE_P(
    English, SummaryCheck,
    testing::Values(NameCase{"en", school, "Participants discussed the cost of the school.", true},
                    NameCase{"en", school, "The school costs 12500 euros and has 25 rooms.", true},
                    NameCase{"en", school, "The school has twenty-five rooms.", true},
                    NameCase{"en", school, "The school costs 15,000 euros.", false},
                    NameCase{"en", school, "The school has thirty five rooms.", false},
                    NameCase{"en", school, "It is one of the schools that Anna knows.", true},
                    NameCase{"en", school, "Anna will call the team.", true},
                    NameCase{"en", school, "Boris will call the team.", false},
                    NameCase{"en", school, "The team met Boris in June.", false},
                    NameCase{"en", school, "Boris's team was met.", false},
                    NameCase{"en", school, "John Miller spoke of rooms.", false},
                    NameCase{"en", school, "They will open the rooms.", true},
                    NameCase{"en", school, "Call Anna.", true}));

INSTANTIATE_TEST_SUITE_P(
    OtherLanguages, SummaryCheck,
    testing::Values(NameCase{"de", "die drei Kinder kamen 2019", "Drei Kinder (3) kamen 2019.", true},
                    NameCase{"de", "die drei Kinder kamen 2019", "Drei Kinder kamen 2018.", false},
                    NameCase{"de", "die drei Kinder kamen", "Die Ankunft der Kinder.", true},
                    NameCase{"fr", "nous avons vu Marie", "On parle de Marie.", true},
                    NameCase{"fr", "nous avons vu Marie", "On parle de Paul.", false},
                    NameCase{"ru", "мы видели Анну в Киеве", "Говорят об Анне и Киеве.", true},
                    NameCase{"ru", "мы видели Анну в Киеве", "Говорят о Борисе.", false}));

TEST(ModelWriting, titlesNameWhatWasSaid)
{
    const Vocabulary said(comparableWords(QString::fromUtf8(school)));
    EXPECT_TRUE(titleFits(u"The cost of the school"_s, said, u"en"_s));
    EXPECT_TRUE(titleFits(u"School Cost Meeting"_s, said, u"en"_s));
    EXPECT_FALSE(titleFits(u"Budget Planning Workshop"_s, said, u"en"_s));
    EXPECT_FALSE(titleFits(u"A talk with Boris"_s, said, u"en"_s));
    EXPECT_FALSE(titleFits(u"School 2031"_s, said, u"en"_s));
}

TEST(ModelWriting, whatTheModelInventsIsLeftOutAndToldOf)
{
    const auto summarised = [](const QString &answer) {
        return writtenSummary(
            longTalk(3), u"en"_s, [&](const ModelQuestion &) { return std::optional(answer); }, &showNothing);
    };
    const auto written = summarised(
        uR"({"title": "The plans of Boris", "summary": ["A school is described.", "It costs 700 euros."],
             "tasks": ["Call Boris.", "Describe the school."]})"_s);
    ASSERT_TRUE(written);
    EXPECT_EQ(written->summary.sentences, QStringList{u"A school is described."_s});
    EXPECT_EQ(written->summary.tasks, QStringList{u"Describe the school."_s});
    EXPECT_TRUE(written->title.isEmpty());
    ASSERT_EQ(written->summary.missing.size(), 1);
    EXPECT_TRUE(filled(written->summary.missing[0]).startsWith(u"2 sentences"));
    EXPECT_FALSE(summarised(uR"({"summary": ["It costs 700 euros."]})"_s));
}

TEST(ModelWriting, withoutAnyAnswerThereIsNoSummary)
{
    EXPECT_FALSE(writtenSummary(
        longTalk(3), u"en"_s, [](const ModelQuestion &) { return std::optional<QString>(); }, &showNothing));
}

} // namespace engine
