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

namespace {

// A recording and its speech, and what each step of the work counts.
struct WorkCase
{
    double recordingSeconds;
    qint64 speechMs;
    bool speakers;
    qint64 allRead;
    qint64 nothingHeard;
    qint64 halfHeard;
    qint64 allHeard;
    qint64 halfTold;
    qint64 whole;
};

const WorkCase workCases[] = {
    {30, 10500, false, 0, 0, 5, 11, 11, 11},
    {600, 300000, false, 10, 10, 160, 310, 310, 310},
    {600, 300000, true, 10, 10, 160, 310, 318, 326},
    {600, 1, true, 10, 10, 10, 11, 11, 12},
    {600, 0, true, 10, 10, 10, 10, 10, 11},
    {0, 0, false, 0, 0, 0, 0, 0, 0},
};

} // namespace

TEST(WorkMeter, countsSecondsOfSpeech)
{
    for (const WorkCase &row : workCases) {
        SCOPED_TRACE(testing::Message() << row.recordingSeconds << " s, " << row.speechMs << " ms");
        const WorkMeter meter(row.recordingSeconds, row.speechMs, row.speakers);
        EXPECT_EQ(meter.read(0), 0);
        EXPECT_EQ(meter.read(row.recordingSeconds), row.allRead);
        EXPECT_EQ(meter.read(row.recordingSeconds + 3600), row.allRead);
        EXPECT_EQ(meter.heard(0), row.nothingHeard);
        EXPECT_EQ(meter.heard(row.speechMs / 2), row.halfHeard);
        EXPECT_EQ(meter.heard(row.speechMs), row.allHeard);
        EXPECT_EQ(meter.told(0), row.allHeard);
        EXPECT_EQ(meter.told(0.5), row.halfTold);
        EXPECT_EQ(meter.told(1), row.whole);
        EXPECT_EQ(meter.whole(), row.whole);
    }
}

TEST(WorkMeter, ofAnUnreadRecordingIsTheMostThatItCanBe)
{
    for (const bool speakers : {false, true}) {
        const WorkMeter unread = WorkMeter::ofUnread(600, speakers);
        EXPECT_EQ(unread.read(300), 5);
        EXPECT_EQ(unread.whole(), WorkMeter(600, 600000, speakers).whole());
        EXPECT_GT(unread.whole(), WorkMeter(600, 590000, speakers).whole());
    }
}

} // namespace engine
