// What the page and the engine say to each other through the application.

#include "viewer/ViewerTest.h"

#include <QPointer>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::waitFor;

namespace {

class Channel : public test::ViewerTest
{
protected:
    ViewerWindow *openKnown(const QString &name, const QByteArray &html = {})
    {
        makeCall(name, html);
        putIntoHistory({u"a"_s, u"b"_s});
        return open(callDir(name));
    }
};

TEST_F(Channel, EveryKindIsCarriedOutAndAnswered)
{
    m_engine.answer(u"speaker"_s, {R"({"changed":3,"speaker":null})"});
    m_engine.answer(u"split"_s, {R"({"segments":[{"text":"a"},{"text":"b"}],"segment":{"text":"ab"}})"});
    m_engine.answer(u"edit"_s, {R"({"clean_updated":true})"});
    ViewerWindow *opened = openKnown(u"a"_s);
    post(opened, u"{kind: 'rename', old: 'Speaker 1', name: 'Anna'}"_s);
    EXPECT_TRUE(isAnswered(opened, R"([["Renamed",true,"Renamed in 3 lines","Speaker 1","Anna"]])"));
    page(opened)->run(u"answers = []"_s);
    post(opened, u"{kind: 'speaker', index: 4, name: null}"_s);
    EXPECT_TRUE(isAnswered(opened, R"([["SpeakerSaved",4,true,"Speaker saved",null]])"));
    page(opened)->run(u"answers = []"_s);
    post(opened, u"{kind: 'split', index: 2, pos: 5}"_s);
    EXPECT_TRUE(isAnswered(opened, R"([["Split",2,true,"Split",{"text":"a"},{"text":"b"}]])"));
    page(opened)->run(u"answers = []"_s);
    post(opened, u"{kind: 'join', index: 3}"_s);
    EXPECT_TRUE(isAnswered(opened, R"([["Joined",3,true,"Joined with the line above",{"text":"ab"}]])"));
    page(opened)->run(u"answers = []"_s);
    post(opened, u"{index: 7, text: '--x'}"_s);
    EXPECT_TRUE(isAnswered(opened, "[[\"Saved\",7,true,\"Saved \xC2\xB7 also fixed in the clean text\",\"--x\"]]"));
    EXPECT_EQ(m_engine.calls(u"split"_s),
              (QList<QStringList>{{u"split"_s, u"id-a"_s, u"2"_s, u"5"_s, u"--json"_s},
                                  {u"split"_s, u"id-a"_s, u"3"_s, u"--join"_s, u"--json"_s}}));
    EXPECT_EQ(m_engine.calls(u"edit"_s),
              (QList<QStringList>{{u"edit"_s, u"id-a"_s, u"7"_s, u"--json"_s, u"--"_s, u"--x"_s}}));
}

TEST_F(Channel, UnusualTextsArriveUnchangedAndComeBackUnchanged)
{
    m_engine.answer(u"edit"_s, {"{}"});
    ViewerWindow *opened = openKnown(u"a"_s);
    const QString text = u"\"'\\ \u2028\u2029 \U0001F408 \u200Fأ\u202E </script> ${x} \t%2"_s;
    page(opened)->run(uR"(var odd = '"\'\\ \u2028\u2029 \u{1F408} \u200F\u0623\u202E </script> ${x} \t%2')"_s);
    post(opened, u"{index: 1, text: odd}"_s);
    EXPECT_TRUE(becomes(opened, u"answers.length"_s, "1"));
    EXPECT_EQ(m_engine.calls(u"edit"_s).value(0).value(5), text);
    EXPECT_EQ(ask(opened, u"answers[0][4] === odd"_s), "true");
}

TEST_F(Channel, ALoneSurrogateComesBackUnchanged)
{
    ViewerWindow *opened = openKnown(u"a"_s);
    post(opened, u"{text: 'a\\ud83db'}"_s); // without an index: refused, and the text echoed
    EXPECT_TRUE(becomes(opened, u"answers.length"_s, "1"));
    EXPECT_EQ(ask(opened, u"answers[0][4] === 'a\\ud83db'"_s), "true");
}

TEST_F(Channel, WhatIsNoObjectIsIgnored)
{
    ViewerWindow *opened = openKnown(u"a"_s);
    for (const QString &body : {u"'text'"_s, u"7"_s, u"null"_s, u"[{index: 1, text: 'a'}]"_s, u"undefined"_s})
        post(opened, body);
    post(opened, u"{}"_s);
    EXPECT_TRUE(isAnswered(opened, R"([["Saved",0,false,"Could not save this change",""]])"));
    EXPECT_EQ(m_engine.count(u"edit"_s), 0);
}

TEST_F(Channel, ThereIsNoOtherName)
{
    ViewerWindow *opened = openKnown(u"a"_s);
    EXPECT_EQ(ask(opened, u"Object.keys(window.webkit.messageHandlers)"_s), R"(["tuppi"])");
}

TEST_F(Channel, SeveralCorrectionsOfOnePageRunAtOnce)
{
    m_engine.answerCall(u"edit"_s, 1, test::Answer{"{}"}.heldAt("first"));
    m_engine.answerCall(u"edit"_s, 2, {"{}"});
    ViewerWindow *opened = openKnown(u"a"_s);
    post(opened, u"{index: 1, text: 'one'}"_s);
    ASSERT_TRUE(waitFor([this] { return m_engine.count(u"edit"_s) == 1; }));
    post(opened, u"{index: 2, text: 'two'}"_s);
    EXPECT_TRUE(isAnswered(opened, R"([["Saved",2,true,"Saved","two"]])"));
    m_engine.openGate("first");
    EXPECT_TRUE(isAnswered(opened, R"([["Saved",2,true,"Saved","two"],["Saved",1,true,"Saved","one"]])"));
}

TEST_F(Channel, MessagesPostedBeforeTheChannelStandsWait)
{
    m_engine.answer(u"edit"_s, {"{}"});
    ViewerWindow *opened = openKnown(u"a"_s, "<script>var it = {index: 1, text: 'early'}; say(it); it.text = 'late';</script>");
    EXPECT_TRUE(isAnswered(opened, R"([["Saved",1,true,"Saved","early"]])"));
}

TEST_F(Channel, AFolderOutsideTheHistoryIsRefused)
{
    makeCall(u"z"_s);
    ViewerWindow *opened = openKnown(u"a"_s);
    m_engine.answerHistory("[]");
    poll();
    post(opened, u"{index: 1, text: 'a'}"_s);
    EXPECT_TRUE(isAnswered(opened, R"([["Saved",1,false,"Could not save this change","a"]])"));
    EXPECT_EQ(m_engine.count(u"edit"_s), 0);
}

TEST_F(Channel, AFailureIsToldWithItsReason)
{
    m_engine.answer(u"split"_s, test::Answer::failure(1, "Error: segment out of range\n"));
    ViewerWindow *opened = openKnown(u"a"_s);
    post(opened, u"{kind: 'join', index: 9}"_s);
    EXPECT_TRUE(isAnswered(opened, R"([["Joined",9,false,"Not saved: segment out of range"]])"));
    EXPECT_EQ(sheet(), nullptr);
}

TEST_F(Channel, TwoWindowsAreAnsweredSeparately)
{
    m_engine.answerCall(u"edit"_s, 1, test::Answer{"{}"}.heldAt("first"));
    m_engine.answerCall(u"edit"_s, 2, {R"({"clean_updated":false})"});
    makeCall(u"b"_s);
    ViewerWindow *first = openKnown(u"a"_s);
    ViewerWindow *second = open(callDir(u"b"_s));
    post(first, u"{index: 1, text: 'one'}"_s);
    ASSERT_TRUE(waitFor([this] { return m_engine.count(u"edit"_s) == 1; }));
    post(second, u"{index: 2, text: 'two'}"_s);
    EXPECT_TRUE(isAnswered(second, R"([["Saved",2,true,"Saved","two"]])"));
    EXPECT_EQ(ask(first, u"answers"_s), "[]");
    m_engine.openGate("first");
    EXPECT_TRUE(isAnswered(first, R"([["Saved",1,true,"Saved","one"]])"));
    EXPECT_EQ(ask(second, u"answers.length"_s), "1");
    EXPECT_EQ(m_engine.calls(u"edit"_s).value(0).value(1), u"id-a"_s);
    EXPECT_EQ(m_engine.calls(u"edit"_s).value(1).value(1), u"id-b"_s);
}

TEST_F(Channel, AClosedWindowStaysUntilItIsAnsweredAndTheListIsAskedForAllTheSame)
{
    m_engine.answer(u"edit"_s, test::Answer{"{}"}.heldAt("gate"));
    QPointer<ViewerWindow> opened = openKnown(u"a"_s);
    post(opened, u"{index: 1, text: 'one'}"_s);
    ASSERT_TRUE(waitFor([this] { return m_engine.count(u"edit"_s) == 1; }));
    opened->close();
    EXPECT_FALSE(opened->isVisible());
    ASSERT_TRUE(pollEnds());
    const int polls = m_engine.count(u"history"_s);
    EXPECT_FALSE(opened.isNull());
    m_engine.openGate("gate");
    EXPECT_TRUE(waitFor([&] { return m_engine.count(u"history"_s) > polls; }));
    EXPECT_TRUE(waitFor([&] { return opened.isNull(); }));
}

TEST_F(Channel, ACrashedPageIsLoadedAgainWithoutTheAnswersToTheFirst)
{
    m_engine.answer(u"edit"_s, test::Answer{"{}"}.heldAt("gate"));
    ViewerWindow *opened = openKnown(u"a"_s);
    post(opened, u"{index: 1, text: 'one'}"_s);
    ASSERT_TRUE(waitFor([this] { return m_engine.count(u"edit"_s) == 1; }));
    for (const int renderer : test::engineProcesses("renderer"))
        ::kill(renderer, SIGKILL);
    ASSERT_TRUE(waitFor([] { return sheet() != nullptr; }));
    sheet()->answer(0);
    const int polled = m_polled;
    m_engine.openGate("gate");
    ASSERT_TRUE(waitFor([&] { return m_polled > polled; }));
    EXPECT_TRUE(becomes(opened, u"answers"_s, "[]"));
}

TEST_F(Channel, WhatThePageSavesAtItsEndIsSaved)
{
    m_engine.answer(u"edit"_s, {"{}"});
    ViewerWindow *opened = openKnown(
        u"a"_s, "<script>addEventListener('pagehide', () => say({index: 3, text: 'last words'}));</script>");
    opened->close();
    ASSERT_TRUE(waitFor([this] { return m_engine.count(u"edit"_s) == 1; }));
    EXPECT_EQ(m_engine.calls(u"edit"_s).value(0).value(5), u"last words"_s);
}

TEST_F(Channel, AFrameInsideThePageHasNone)
{
    ViewerWindow *opened = openKnown(
        u"a"_s, "<iframe srcdoc=\"<script>parent.inside = [typeof webkit, typeof qt, typeof TUPPI_I18N]</script>\"></iframe>");
    EXPECT_TRUE(becomes(opened, u"window.inside"_s, R"(["undefined","undefined","undefined"])"));
}

} // namespace
