#include "worker/JobProgress.h"

#include "Support.h"

using namespace Qt::StringLiterals;

namespace engine {

TEST(JobProgress, tellsWhatIsNew)
{
    JobProgress progress;
    EXPECT_EQ(progress.advance(0, 40), u"0/40"_s);
    EXPECT_EQ(progress.advance(12, 40), u"12/40"_s);
    EXPECT_EQ(progress.advance(12, 40), std::nullopt);
    EXPECT_EQ(progress.advance(40, 40), u"40/40"_s);
}

TEST(JobProgress, neverGoesBack)
{
    JobProgress progress;
    EXPECT_EQ(progress.advance(20, 40), u"20/40"_s);
    EXPECT_EQ(progress.advance(19, 40), std::nullopt);
    // The whole turns out larger: half stays half.
    EXPECT_EQ(progress.advance(21, 61), u"31/61"_s);
    EXPECT_EQ(progress.advance(40, 50), u"40/50"_s);
    EXPECT_EQ(progress.advance(60, 50), u"50/50"_s);
}

TEST(JobProgress, goesOnFromWhatWasShown)
{
    struct Case
    {
        QString shown;
        QString next; // for 10 of 100
    };
    for (const Case &one : {Case{u"4/6"_s, u"67/100"_s}, Case{u"0/6"_s, u"10/100"_s},
                            Case{u"7/6"_s, u"100/100"_s}, Case{{}, u"10/100"_s}, Case{u"4/0"_s, u"10/100"_s},
                            Case{u"40%"_s, u"10/100"_s}, Case{u"-4/6"_s, u"10/100"_s}})
        EXPECT_EQ(JobProgress(one.shown).advance(10, 100), one.next) << one.shown.toStdString();
    EXPECT_EQ(JobProgress(u"10/100"_s).advance(10, 100), std::nullopt);
}

TEST(JobProgress, aWholeOfNothingIsNoDivisionByZero)
{
    EXPECT_EQ(JobProgress().advance(0, 0), u"0/1"_s);
}

} // namespace engine
