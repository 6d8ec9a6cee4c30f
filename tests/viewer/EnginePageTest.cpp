// The page that the local engine writes, in the application.

#include "viewer/ViewerTest.h"

#include <QFile>

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::waitFor;

namespace {

class TheEnginesPage : public test::ViewerTest
{
protected:
    QString makeRealCall(const QString &name)
    {
        QByteArray html = test::readFile(QStringLiteral(TUPPI_PAGE));
        html.replace("@TUPPI_TRANSCRIPT@", R"({"title": "Interview", "language": "en", "duration": 6,
            "audio": null, "speakers": ["Speaker 1"], "summary": null, "segments": [
            {"start": 0, "end": 3, "speaker": "Speaker 1", "text": "Good morning."},
            {"start": 3, "end": 6, "speaker": "Speaker 1", "text": "How are you?"}]})");
        return makeCall(name, html);
    }
};

TEST_F(TheEnginesPage, CanBeCorrected)
{
    makeRealCall(u"a"_s);
    putIntoHistory({u"a"_s});
    m_engine.answer(u"speaker"_s, {R"({"speaker":"Anna","changed":2})"});
    ViewerWindow *opened = open(callDir(u"a"_s));
    EXPECT_EQ(ask(opened, u"state.lines.map(line => line.text)"_s), R"(["Good morning.","How are you?"])");
    page(opened)->run(u"void enqueue(() => renameSpeaker('Speaker 1', 'Anna'))"_s);
    EXPECT_TRUE(becomes(opened, u"state.lines.map(line => line.speaker)"_s, R"(["Anna","Anna"])"));
    EXPECT_EQ(m_engine.calls(u"speaker"_s).value(0).value(3), u"--old=Speaker 1"_s);
}

TEST_F(TheEnginesPage, BeginsWithTheTabThatWasAskedFor)
{
    makeRealCall(u"a"_s);
    ViewerWindow *opened = open(callDir(u"a"_s), true);
    EXPECT_TRUE(becomes(opened, u"state.tab"_s, "\"summary\""));
    m_app->showResult(row(callDir(u"a"_s)), false);
    EXPECT_TRUE(becomes(opened, u"state.tab"_s, "\"transcript\""));
}

TEST_F(TheEnginesPage, AnEditThatIsStillOpenIsSavedWhenTheWindowIsClosed)
{
    makeRealCall(u"a"_s);
    putIntoHistory({u"a"_s});
    m_engine.answer(u"edit"_s, {"{}"});
    ViewerWindow *opened = open(callDir(u"a"_s));
    page(opened)->run(u"openEditor(state.lines[1], 0); area.value = 'How are you now?'"_s);
    ASSERT_TRUE(becomes(opened, u"state.editor !== null"_s, "true"));
    opened->close();
    ASSERT_TRUE(waitFor([this] { return m_engine.count(u"edit"_s) == 1; }));
    EXPECT_EQ(m_engine.calls(u"edit"_s).value(0).mid(2),
              (QStringList{u"1"_s, u"--json"_s, u"--"_s, u"How are you now?"_s}));
}

} // namespace
