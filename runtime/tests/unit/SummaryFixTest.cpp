#include "text/SummaryFix.h"

#include "text/CleanText.h"
#include "text/Summary.h"

#include "Support.h"

using namespace Qt::StringLiterals;

namespace engine {

namespace {

// Lines as "Name: text".
std::vector<Line> spokenLines(const QStringList &texts)
{
    std::vector<Line> lines;
    for (const QString &text : texts) {
        const qsizetype colon = text.indexOf(u": ");
        lines.push_back({0, 0, text.left(std::max<qsizetype>(colon, 0)), text.mid(colon < 0 ? 0 : colon + 2), {}});
    }
    return lines;
}

const QStringList saidThere{u"Anna: good morning um everybody"_s,
                          u"Anna: we we have to call mister born about the roof"_s,
                          u"Bo: can you um send the the letter to doris"_s,
                          u"Anna: yes by friday"_s,
                          u"Bo: the roof has cost twenty five thousand euros"_s,
                          u"Bo: we have to call mister born"_s};
const QStringList pickedTasks{u"Anna: We have to call mister born about the roof."_s,
                        u"Bo: Can you send the letter to doris? Anna: Yes by Friday."_s,
                        u"Bo: We have to call mister born."_s};
const QStringList pickedSentences{u"The roof has cost 25,000 euros."_s, u"We have to call mister born about the roof."_s};

struct EditCase
{
    const char *name;
    size_t line;
    QString corrected;
    QStringList tasks;
    QStringList sentences;
};

const std::vector<EditCase> lineEdits{
    {"aTask", 1, u"we we have to call mister brown about the roof"_s,
     {u"Anna: We have to call mister brown about the roof."_s, pickedTasks[1], pickedTasks[2]},
     {pickedSentences[0], u"We have to call mister brown about the roof."_s}},
    {"aRequest", 2, u"can you um send the the letter to boris"_s,
     {pickedTasks[0], u"Bo: Can you send the letter to boris? Anna: Yes by Friday."_s, pickedTasks[2]}, pickedSentences},
    {"anAnswer", 3, u"yes by monday"_s,
     {pickedTasks[0], u"Bo: Can you send the letter to doris? Anna: Yes by monday."_s, pickedTasks[2]}, pickedSentences},
    {"aSentence", 4, u"the roof has cost twenty five thousand dollars"_s, pickedTasks,
     {u"The roof has cost 25,000 dollars."_s, pickedSentences[1]}},
    {"whatWasNotPicked", 0, u"good evening um everybody"_s, pickedTasks, pickedSentences},
};

class SummaryEdit : public testing::TestWithParam<EditCase>
{
};

} // namespace

TEST_P(SummaryEdit, changesWhatWasPickedFromTheLine)
{
    const EditCase &edit = GetParam();
    EXPECT_EQ(lineCorrected(pickedTasks, spokenLines(saidThere), edit.line, edit.corrected), edit.tasks);
    EXPECT_EQ(lineCorrected(pickedSentences, spokenLines(saidThere), edit.line, edit.corrected), edit.sentences);
}

INSTANTIATE_TEST_SUITE_P(Tables, SummaryEdit, testing::ValuesIn(lineEdits),
                         [](const auto &given) { return std::string(given.param.name); });

TEST(SummaryFix, whatAModelWroteInOtherWordsStays)
{
    const QStringList written{u"The roof is too expensive, and Mister Born is to be asked about it."_s};
    EXPECT_EQ(lineCorrected(written, spokenLines(saidThere), 1, u"we we have to call mister brown about the roof"_s), written);
}

TEST(SummaryFix, anotherSpeakerOfALine)
{
    const std::vector<Line> lines = spokenLines(saidThere);
    EXPECT_EQ(lineGiven(pickedTasks, lines, 1, u"Eve"_s),
              (QStringList{u"Eve: We have to call mister born about the roof."_s, pickedTasks[1], pickedTasks[2]}));
    EXPECT_EQ(lineGiven(pickedTasks, lines, 2, u"Eve"_s),
              (QStringList{pickedTasks[0], u"Eve: Can you send the letter to doris? Anna: Yes by Friday."_s, pickedTasks[2]}));
    EXPECT_EQ(lineGiven(pickedTasks, lines, 3, u"Eve"_s),
              (QStringList{pickedTasks[0], u"Bo: Can you send the letter to doris? Eve: Yes by Friday."_s, pickedTasks[2]}));
    EXPECT_EQ(lineGiven(pickedTasks, lines, 5, {}), (QStringList{pickedTasks[0], pickedTasks[1], u"We have to call mister born."_s}));
    EXPECT_EQ(lineGiven(pickedTasks, lines, 0, u"Eve"_s), pickedTasks);
}

TEST(SummaryFix, aSpeakerOfALineThatHadNone)
{
    const std::vector<Line> lines = spokenLines({u"good morning"_s, u"um we have to call"_s});
    EXPECT_EQ(lineGiven({u"We have to call."_s}, lines, 1, u"Eve"_s), QStringList{u"Eve: We have to call."_s});
}

TEST(SummaryFix, aNewNameIsCarriedOver)
{
    const QStringList numbered{u"Speaker 1: Can you call? Speaker 2: On Monday."_s, u"Speaker 12: I will call."_s,
                               u"Speaker 1 will call Speaker 2 and Speaker 1."_s};
    const QStringList named = speakerRenamed(numbered, {}, u"Speaker 1"_s, u"Anna \\1"_s);
    EXPECT_EQ(named, (QStringList{u"Anna \\1: Can you call? Speaker 2: On Monday."_s, u"Speaker 12: I will call."_s,
                                  u"Anna \\1 will call Speaker 2 and Anna \\1."_s}));
    EXPECT_EQ(speakerRenamed(numbered, {}, u"Speaker 1"_s, u"Speaker 1 (Anna)"_s).first(),
              u"Speaker 1 (Anna): Can you call? Speaker 2: On Monday."_s);
}

TEST(SummaryFix, aNameThatWasSaidChangesWhereItTellsWhoSpeaks)
{
    const std::vector<Line> lines = spokenLines({u"Ann: can you call bo"_s, u"Bo: tell her that ann comes"_s});
    EXPECT_EQ(speakerRenamed({u"Ann: Can you call Bo? Bo: On Monday."_s, u"Ann: Tell Bo that Ann comes."_s}, lines,
                             u"Bo"_s, u"Carl"_s),
              (QStringList{u"Ann: Can you call Bo? Carl: On Monday."_s, u"Ann: Tell Bo that Ann comes."_s}));
    EXPECT_EQ(speakerRenamed({u"Ann: Tell Bo that Ann comes."_s}, lines, u"Ann"_s, u"Eve"_s),
              QStringList{u"Eve: Tell Bo that Ann comes."_s});
}

TEST(SummaryFix, aNameThatNobodySaidChangesEverywhere)
{
    const std::vector<Line> lines = spokenLines({u"Ana: i will send it to anabel"_s, u"Bo: thank you"_s});
    EXPECT_EQ(speakerRenamed({u"Ana will send it, and Bo trusts Ana's word."_s, u"Ana: I will send it to Anabel."_s}, lines,
                             u"Ana"_s, u"Anna"_s),
              (QStringList{u"Anna will send it, and Bo trusts Anna's word."_s, u"Anna: I will send it to Anabel."_s}));
}

} // namespace engine
