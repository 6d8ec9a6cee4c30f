// Which windows open, and what they are like.

#include "viewer/ViewerTest.h"

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::waitFor;

namespace {

using ResultWindows = test::ViewerTest;

TEST_F(ResultWindows, AViewerShowsThePage)
{
    const QString call = makeCall(u"a"_s);
    ViewerWindow *opened = open(call);
    EXPECT_EQ(opened->windowTitle(), u"Talk"_s);
    EXPECT_EQ(opened->size(), QSize(900, 720));
    EXPECT_EQ(ask(opened, u"tab"_s), "\"none\"");
    EXPECT_EQ(ask(opened, u"texts"_s), "{}");
    EXPECT_EQ(ask(opened, u"rtl"_s), "false");
}

TEST_F(ResultWindows, AMessageIsAnswered)
{
    const QString call = makeCall(u"a"_s);
    putIntoHistory({u"a"_s});
    m_engine.answer(u"speaker"_s, {R"({"changed":3})"});
    ViewerWindow *opened = open(call);
    post(opened, u"{kind: 'rename', old: 'Speaker 1', name: 'Anna'}"_s);
    EXPECT_TRUE(becomes(opened, u"answers"_s, R"([["Renamed",true,"Renamed in 3 lines","Speaker 1","Anna"]])"));
    EXPECT_EQ(m_engine.calls(u"speaker"_s),
              (QList<QStringList>{{u"speaker"_s, u"id-a"_s, u"--rename"_s, u"--old=Speaker 1"_s, u"--new=Anna"_s, u"--json"_s}}));
}

} // namespace
