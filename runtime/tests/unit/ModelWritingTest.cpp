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
        talk.push_back(
            {u"Sentence number %1 tells something about the school that will open."_s.arg(1000 + i), i * 5000,
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
    EXPECT_EQ(keepsWhatWasSaid(QString::fromUtf8(GetParam().said), QString::fromUtf8(GetParam().written)),
              GetParam().kept);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, ModelCheck,
    testing::Values(
        CheckCase{"we need to send the report by friday", "We need to send the report by Friday.", true},
        CheckCase{"we needs sending the reports by friday", "We need to send the report by Friday.", true},
        CheckCase{"we met at nine and left", "We met at 9 and left.", true},
        CheckCase{"we met at nine and left", "We met at 8 and left.", false},
        CheckCase{"we met at nine and left", "We met Boris at 9 and left.", false},
        CheckCase{"the money came from the bank in winter", "The money came.", false},
        CheckCase{"the money came from the bank", "The money never came from the bank.", false},
        CheckCase{"the money didn't come", "The money did come.", false},
        CheckCase{"the money came", "", false},
        CheckCase{"мы поехали домой вечером", "Мы поехали домой вечером.", true},
        CheckCase{"мы поехали домой вечером", "Мы поехали на работу вечером.", false}));

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
    EXPECT_TRUE(written->summary.missing[0].startsWith(u"What was said from 00:0"));
}

TEST(ModelWriting, withoutAnyAnswerThereIsNoSummary)
{
    EXPECT_FALSE(writtenSummary(
        longTalk(3), u"en"_s, [](const ModelQuestion &) { return std::optional<QString>(); }, &showNothing));
}

} // namespace engine
