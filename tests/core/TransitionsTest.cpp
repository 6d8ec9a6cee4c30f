#include "list/Transitions.h"

#include "engine/EngineReplies.h"
#include "support/Support.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace tuppi;

namespace {

using Announcement = Transition::Announcement;

const QDateTime launch = QDateTime::fromString(u"2025-03-14T10:00:00Z"_s, Qt::ISODate);

QByteArray nameOf(Announcement announcement)
{
    switch (announcement) {
    case Announcement::None:
        return {};
    case Announcement::Ready:
        return "ready";
    case Announcement::Failed:
        return "failed";
    }
    return "?";
}

/// "id announcement" of everything that is announced, and "id: before -> status" of every line of the log.
struct Told
{
    QByteArrayList announced;
    QByteArrayList logged;
    QStringList titles;
};

Told tell(TransitionMemory &memory, const QByteArray &history)
{
    Told told;
    for (const Transition &transition : FindTransitions(memory, ArrangeHistory(test::array(history)).entries)) {
        const QByteArray id = transition.id.toUtf8();
        if (transition.announcement != Announcement::None) {
            told.announced.append(id + ' ' + nameOf(transition.announcement));
            told.titles.append(transition.title);
        } else {
            EXPECT_EQ(transition.title, QString()) << "asked for in vain";
        }
        if (transition.changed)
            told.logged.append(id + ": " + transition.before.toUtf8() + " -> " + transition.status.toUtf8());
    }
    return told;
}

QByteArray job(const QByteArray &status, const QByteArray &completedAt = {})
{
    const QByteArray completed = completedAt.isEmpty() ? QByteArray() : R"(,"completed_at":")" + completedAt + '"';
    return R"([{"id":"a","title":"Talk","status":")" + status + '"' + completed + "}]";
}

constexpr auto before = "2025-03-14T09:59:59Z";
constexpr auto after = "2025-03-14T10:00:01Z";

/// The replies that the application gets one after the other; what the last of them tells.
struct Case
{
    const char *name;
    QByteArrayList replies;
    QByteArrayList announced;
    QByteArrayList logged;
};

class TransitionCases : public testing::TestWithParam<Case>
{
};

TEST_P(TransitionCases, TheLastReplyTells)
{
    TransitionMemory memory;
    memory.launchedAt = launch;
    Told told;
    for (const QByteArray &reply : GetParam().replies)
        told = tell(memory, reply);
    EXPECT_EQ(told.announced, GetParam().announced);
    EXPECT_EQ(told.logged, GetParam().logged);
}

INSTANTIATE_TEST_SUITE_P(
    FirstReply, TransitionCases,
    testing::Values(Case{"Nothing", {"[]"}, {}, {}},
                    Case{"ReadyBeforeTheLaunch", {job("ready", before)}, {}, {}},
                    Case{"ReadyAtTheLaunch", {job("ready", "2025-03-14T10:00:00Z")}, {}, {}},
                    Case{"ReadyAfterTheLaunch", {job("ready", after)}, {"a ready"}, {}},
                    Case{"ReadyInAnotherTimeZone", {job("ready", "2025-03-14T12:00:01+02:00")}, {"a ready"}, {}},
                    Case{"ReadyInAnotherTimeZoneBefore", {job("ready", "2025-03-14T11:59:59+02:00")}, {}, {}},
                    Case{"ReadyYesterday", {job("ready", "2025-03-13T23:00:00Z")}, {}, {}},
                    Case{"ReadyWithoutADate", {job("ready")}, {}, {}},
                    Case{"ReadyWithGarbageForADate", {job("ready", "soon")}, {}, {}},
                    Case{"ReadyWithoutATimeZone", {job("ready", "2030-01-01T00:00:00")}, {}, {}},
                    Case{"ReadyWithADayOnly", {job("ready", "2030-01-01")}, {}, {}},
                    Case{"Failed", {job("failed", after)}, {}, {}},
                    Case{"Working", {job("transcribing")}, {}, {}}),
    test::caseName);

INSTANTIATE_TEST_SUITE_P(
    LaterReply, TransitionCases,
    testing::Values(
        Case{"TheSameAgain", {job("transcribing"), job("transcribing")}, {}, {}},
        Case{"NextStage", {job("transcribing"), job("analyzing")}, {}, {"a: transcribing -> analyzing"}},
        Case{"Ready", {job("transcribing"), job("ready", after)}, {"a ready"}, {"a: transcribing -> ready"}},
        Case{"ReadyWithoutADate", {job("queued"), job("ready")}, {"a ready"}, {"a: queued -> ready"}},
        Case{"ReadyWithGarbageForADate", {job("cleaning"), job("ready", "soon")}, {"a ready"}, {"a: cleaning -> ready"}},
        Case{"ReadyButAsOfBeforeTheLaunch", {job("analyzing"), job("ready", before)}, {}, {"a: analyzing -> ready"}},
        Case{"ReadyOnlyOnce", {job("cleaning"), job("ready", after), job("ready", after)}, {}, {}},
        Case{"OldOnesStayOld", {job("ready", before), job("ready", after)}, {}, {}},
        Case{"NewAndReadyWithoutADate", {"[]", job("ready")}, {}, {"a: (new) -> ready"}},
        Case{"NewAndReadyAfterTheLaunch", {"[]", job("ready", after)}, {"a ready"}, {"a: (new) -> ready"}},
        Case{"NewAndReadyBeforeTheLaunch", {"[]", job("ready", before)}, {}, {"a: (new) -> ready"}},
        Case{"New", {"[]", job("queued")}, {}, {"a: (new) -> queued"}},
        Case{"NewAndFailed", {"[]", job("failed")}, {}, {"a: (new) -> failed"}},
        Case{"Failed", {job("cleaning"), job("failed")}, {"a failed"}, {"a: cleaning -> failed"}},
        Case{"FailedFromTheQueue", {job("queued"), job("failed")}, {"a failed"}, {"a: queued -> failed"}},
        Case{"FailedOnlyOnce", {job("cleaning"), job("failed"), job("failed")}, {}, {}},
        Case{"FailedAfterBeingCancelled", {job("cancelled"), job("failed")}, {}, {"a: cancelled -> failed"}},
        Case{"Cancelled", {job("transcribing"), job("cancelled")}, {}, {"a: transcribing -> cancelled"}},
        Case{"UnknownEnd", {job("transcribing"), job("lost")}, {}, {"a: transcribing -> lost"}},
        Case{"Paused",
             {job("transcribing"), R"([{"id":"a","status":"transcribing","paused":true}])"}, {}, {}},
        Case{"ReadyWithoutADateFromNoWork", {job("failed"), job("ready")}, {}, {"a: failed -> ready"}}),
    test::caseName);

INSTANTIATE_TEST_SUITE_P(
    Again, TransitionCases,
    testing::Values(
        Case{"AnnouncedAndReadyAgain",
             {job("cleaning"), job("ready", after), job("queued", after), job("ready", after)},
             {"a ready"}, {"a: queued -> ready"}},
        Case{"PassedOverAndReadyAgain", {job("ready", before), job("transcribing"), job("ready", before)},
             {"a ready"}, {"a: transcribing -> ready"}},
        Case{"FailedAgain", {job("cleaning"), job("failed"), job("queued"), job("failed")}, {"a failed"},
             {"a: queued -> failed"}},
        Case{"AnnouncedGoneAndBack", {job("cleaning"), job("ready", after), "[]", job("ready", after)}, {},
             {"a: (new) -> ready"}},
        Case{"WorkingGoneAndBackReady", {job("cleaning"), "[]", job("ready")}, {}, {"a: (new) -> ready"}},
        Case{"WorkingGoneAndBackFailed", {job("cleaning"), "[]", job("failed")}, {}, {"a: (new) -> failed"}}),
    test::caseName);

INSTANTIATE_TEST_SUITE_P(
    Fields, TransitionCases,
    testing::Values(
        Case{"SeveralInTheOrderOfTheReply",
             {R"([{"id":"a","status":"cleaning"},{"id":"b","status":"queued"},{"id":"c","status":"cleaning"}])",
              R"([{"id":"c","status":"failed"},{"id":"b","status":"queued"},{"id":"a","status":"ready"}])"},
             {"c failed", "a ready"}, {"c: cleaning -> failed", "a: cleaning -> ready"}},
        Case{"WithoutAnId", {R"([{"status":"cleaning"},{"id":null,"status":"cleaning"},{"id":"","status":"cleaning"}])",
                             R"([{"status":"ready"},{"id":null,"status":"ready"},{"id":"","status":"ready"}])"}, {}, {}},
        Case{"WithoutAStatus", {job("cleaning"), R"([{"id":"a","status":null}])"}, {}, {"a: cleaning -> "}},
        Case{"StatusThatComesBack", {R"([{"id":"a"}])", job("ready")}, {}, {"a:  -> ready"}},
        Case{"Hidden", {R"([{"id":"a","status":"cleaning","hidden":true}])", R"([{"id":"a","status":"ready","hidden":true}])"},
             {"a ready"}, {"a: cleaning -> ready"}}),
    test::caseName);

TEST(FindTransitions, NamesTheTranscript)
{
    TransitionMemory memory;
    memory.launchedAt = launch;
    tell(memory, R"([{"id":"a","status":"cleaning"},{"id":"b","status":"cleaning"},{"id":"c","status":"cleaning"}])");
    EXPECT_EQ(tell(memory, R"([{"id":"a","status":"ready","title":"Talk"},{"id":"b","status":"ready","title":null},
                               {"id":"c","status":"failed"}])").titles,
              (QStringList{u"Talk"_s, u"Recording"_s, u"Recording"_s}));
}

TEST(FindTransitions, ForgetsJobsThatAreGone)
{
    TransitionMemory memory;
    memory.launchedAt = launch;
    tell(memory, R"([{"id":"a","status":"ready"},{"id":"b","status":"queued"}])");
    tell(memory, R"([{"id":"b","status":"queued"}])");
    EXPECT_EQ(memory.last->size(), 1);
    EXPECT_TRUE(memory.onceReady.contains(u"a"_s)) << "but not that it was announced";
}

} // namespace
