// What was corrected reaches the engine also when the window is closed, the application quits or the text is shared.

#include "viewer/ViewerTest.h"

#include <QApplication>
#include <QFile>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::waitFor;

namespace {

class SavedAtTheEnd : public test::ViewerTest
{
protected:
    /// The engine's page, known to the history.
    ViewerWindow *openReal()
    {
        QByteArray html = test::readFile(QStringLiteral(TUPPI_PAGE));
        html.replace("@TUPPI_TRANSCRIPT@", R"({"title": "Interview", "language": "en", "duration": 9,
            "audio": null, "speakers": ["Ann"], "summary": null, "segments": [
            {"start": 0, "end": 3, "speaker": "Ann", "text": "One."},
            {"start": 3, "end": 6, "speaker": "Ann", "text": "Two."},
            {"start": 6, "end": 9, "speaker": "Ann", "text": "Three."}]})");
        makeCall(u"a"_s, html);
        putIntoHistory({u"a"_s});
        return open(callDir(u"a"_s));
    }

    /// The first edit is with the engine, which waits; a second is done, a third still open.
    ViewerWindow *openWithThreeEdits(const test::Answer &second = {"{}"})
    {
        m_engine.answer(u"edit"_s, {"{}"});
        m_engine.answerCall(u"edit"_s, 1, test::Answer{"{}"}.heldAt("gate"));
        m_engine.answerCall(u"edit"_s, 2, second);
        ViewerWindow *opened = openReal();
        for (const QString &line : {u"0"_s, u"1"_s, u"2"_s})
            page(opened)->run(u"openEditor(state.lines[%1], 0); area.value = 'New %1'"_s.arg(line));
        EXPECT_TRUE(becomes(opened, u"state.editor !== null && state.asked !== null"_s, "true"));
        EXPECT_TRUE(waitFor([this] { return m_engine.count(u"edit"_s) == 1; }));
        return opened;
    }

    QStringList savedTexts() const
    {
        QStringList texts;
        for (const QStringList &call : m_engine.calls(u"edit"_s))
            texts.append(call.value(2) + u' ' + call.value(5));
        return texts;
    }

    const QStringList allThree{u"0 New 0"_s, u"1 New 1"_s, u"2 New 2"_s};
};

TEST_F(SavedAtTheEnd, WhatWaitsForAnAnswerIsSavedInOrderAfterTheWindowWasClosed)
{
    const QPointer<ViewerWindow> opened = openWithThreeEdits();
    opened->close();
    EXPECT_FALSE(opened->isVisible());
    EXPECT_TRUE(m_app->viewer().resultWindows.isEmpty());
    m_engine.openGate("gate");
    EXPECT_TRUE(waitFor([&] { return opened.isNull(); }));
    EXPECT_EQ(savedTexts(), allThree);
    EXPECT_EQ(sheet(), nullptr);
}

TEST_F(SavedAtTheEnd, AnUndoOfManyStepsGoesToItsEnd)
{
    m_engine.answer(u"speaker"_s, {R"({"speaker":"Bo"})"});
    const QPointer<ViewerWindow> opened = openReal();
    page(opened)->run(u"remember('Rename', state.lines.map(line => () => saveSpeaker(line, 'Bo', true))); undo()"_s);
    opened->close();
    EXPECT_TRUE(waitFor([&] { return opened.isNull(); }));
    EXPECT_EQ(m_engine.count(u"speaker"_s), 3);
}

TEST_F(SavedAtTheEnd, AFailureIsToldInTheMainWindowWithWhatWasWritten)
{
    const QPointer<ViewerWindow> opened = openWithThreeEdits(test::Answer::failure(1, "Error: disk full\n"));
    opened->close();
    m_engine.openGate("gate");
    ASSERT_TRUE(waitFor([&] { return opened.isNull(); }));
    ASSERT_NE(sheet(), nullptr);
    EXPECT_EQ(sheet()->text().message, u"A correction to “Talk” was not saved"_s);
    EXPECT_EQ(sheet()->text().detail, u"Not saved: disk full"_s);
    EXPECT_EQ(sheet()->findChild<QPlainTextEdit *>(u"lostText"_s)->toPlainText(), u"New 1"_s);
    EXPECT_EQ(savedTexts(), allThree) << "the others are not held up";
}

TEST_F(SavedAtTheEnd, WhatFailedBeforeIsToldToo)
{
    m_engine.answer(u"edit"_s, test::Answer::failure(1, "Error: busy\n"));
    const QPointer<ViewerWindow> opened = openReal();
    page(opened)->run(u"saveLater(state.lines[1], 'Typed', 0)"_s);
    ASSERT_TRUE(becomes(opened, u"tuppiFailed()"_s, R"(["Typed"])"));
    EXPECT_EQ(sheet(), nullptr) << "the page tells of it, and offers it";
    QEvent quit(QEvent::Quit);
    QCoreApplication::sendEvent(qApp, &quit);
    EXPECT_FALSE(quit.isAccepted());
    ASSERT_TRUE(waitFor([&] { return opened.isNull(); }));
    ASSERT_NE(sheet(), nullptr);
    EXPECT_EQ(sheet()->text().message, u"A correction to “Talk” was not saved"_s);
    EXPECT_EQ(sheet()->findChild<QPlainTextEdit *>(u"lostText"_s)->toPlainText(), u"Typed"_s);
    EXPECT_FALSE(m_app->viewer().quitsThen);
}

TEST_F(SavedAtTheEnd, AnEngineThatHangsIsNotWaitedForForEver)
{
    const QPointer<ViewerWindow> opened = openWithThreeEdits();
    opened->close();
    const QPointer<QTimer> patience = opened->findChild<QTimer *>(u"patience"_s);
    // The page has told what it has not saved: from here on it is the engine that is waited for.
    constexpr int longestForThePage = 10000;
    ASSERT_TRUE(waitFor([&] { return patience && patience->interval() > longestForThePage; }));
    patience->start(0);
    ASSERT_TRUE(waitFor([] { return sheet() != nullptr; }));
    EXPECT_EQ(sheet()->findChild<QPlainTextEdit *>(u"lostText"_s)->toPlainText(), u"New 0\nNew 1\nNew 2"_s);
    EXPECT_TRUE(waitFor([&] { return opened.isNull(); }));
    m_engine.openGate("gate");
    ASSERT_TRUE(pollEnds());
}

TEST_F(SavedAtTheEnd, APageOpenedAgainMeanwhileIsTheSame)
{
    ViewerWindow *opened = openWithThreeEdits();
    opened->close();
    m_app->showResult(row(callDir(u"a"_s)), false);
    EXPECT_EQ(viewer(callDir(u"a"_s)), opened);
    EXPECT_TRUE(opened->isVisible());
    m_engine.openGate("gate");
    EXPECT_TRUE(becomes(opened, u"state.lines.map(line => line.text)"_s, R"(["New 0","New 1","New 2"])"));
    EXPECT_EQ(savedTexts(), allThree);
    EXPECT_TRUE(opened->isVisible());
}

TEST_F(SavedAtTheEnd, APageOpenedAgainAfterARenameIsAnother)
{
    const QPointer<ViewerWindow> opened = openWithThreeEdits();
    m_app->closeResultWindowsForDir(callDir(u"a"_s));
    m_app->showResult(row(callDir(u"a"_s), u"New Name"_s), false);
    EXPECT_EQ(viewer(callDir(u"a"_s)), nullptr) << "what it is to show is still being saved";
    m_engine.openGate("gate");
    ASSERT_TRUE(waitFor([&] { return opened.isNull() && viewer(callDir(u"a"_s)); }));
    EXPECT_EQ(viewer(callDir(u"a"_s))->windowTitle(), u"New Name"_s);
    EXPECT_EQ(savedTexts(), allThree);
}

TEST_F(SavedAtTheEnd, AQuitWaits)
{
    const QPointer<ViewerWindow> opened = openWithThreeEdits();
    QTimer asked;
    QObject::connect(&asked, &QTimer::timeout, qApp, [&] {
        asked.stop();
        QCoreApplication::quit();
        EXPECT_FALSE(opened.isNull() || opened->isVisible());
        EXPECT_TRUE(m_app->viewer().quitsThen);
        m_engine.openGate("gate");
    });
    asked.start(0);
    EXPECT_EQ(QApplication::exec(), 0);
    EXPECT_TRUE(opened.isNull());
    EXPECT_EQ(savedTexts(), allThree);
}

TEST_F(SavedAtTheEnd, AQuitIsCalledOffByAFailure)
{
    const QPointer<ViewerWindow> opened = openWithThreeEdits(test::Answer::failure(1, "Error: disk full\n"));
    QEvent quit(QEvent::Quit);
    QCoreApplication::sendEvent(qApp, &quit);
    EXPECT_FALSE(quit.isAccepted());
    m_engine.openGate("gate");
    ASSERT_TRUE(waitFor([&] { return opened.isNull(); }));
    EXPECT_FALSE(m_app->viewer().quitsThen);
    EXPECT_NE(sheet(), nullptr);
}

TEST_F(SavedAtTheEnd, SharingWaitsForTheTextThatIsBeingWritten)
{
    ViewerWindow *opened = openReal();
    const test::Environment temporary("TMPDIR", QFile::encodeName(m_calls.path()));
    const QString text = callDir(u"a"_s) + u"/transcript.raw.txt"_s;
    test::writeFile(text, "Old");
    test::Answer saved{"{}"};
    saved.before = "echo -n New >'" + text.toUtf8() + "'";
    m_engine.answer(u"edit"_s, saved.heldAt("gate"));
    page(opened)->run(u"openEditor(state.lines[0], 0); area.value = 'New'"_s);
    ASSERT_TRUE(becomes(opened, u"state.editor !== null"_s, "true"));
    opened->findChild<QPushButton *>(u"shareWindowText"_s)->click();
    ASSERT_TRUE(waitFor([this] { return m_engine.count(u"edit"_s) == 1; }));
    const QString shared = m_calls.filePath(u"Tuppi Transcriber/a.txt"_s);
    EXPECT_FALSE(QFile::exists(shared));
    m_engine.openGate("gate");
    ASSERT_TRUE(waitFor([&] { return QFile::exists(shared); }));
    EXPECT_EQ(test::readFile(shared), "New");
}

TEST_F(SavedAtTheEnd, CopyingFromTheListWaitsForWhatIsBeingSaved)
{
    openWithThreeEdits();
    m_app->copyRowText(u"id-a"_s);
    EXPECT_TRUE(waitFor([this] { return m_engine.count(u"edit"_s) == 1; }));
    EXPECT_EQ(m_engine.count(u"copy"_s), 0);
    m_engine.openGate("gate");
    EXPECT_TRUE(waitFor([this] { return m_engine.count(u"copy"_s) == 1; }));
    EXPECT_EQ(savedTexts(), allThree);
}

TEST_F(SavedAtTheEnd, AnOpenEditOutlivesTheFailureOfAnother)
{
    m_engine.answer(u"edit"_s, test::Answer::failure(1, "Error: disk full\n").heldAt("gate"));
    ViewerWindow *opened = openReal();
    for (const QString &line : {u"0"_s, u"1"_s})
        page(opened)->run(u"openEditor(state.lines[%1], 0); area.value = 'New %1'"_s.arg(line));
    ASSERT_TRUE(waitFor([this] { return m_engine.count(u"edit"_s) == 1; }));
    m_engine.openGate("gate");
    ASSERT_TRUE(becomes(opened, u"tuppiFailed()"_s, R"(["New 0"])"));
    EXPECT_TRUE(becomes(opened, u"document.activeElement === area && area.value"_s, R"("New 1")"));
    EXPECT_EQ(m_engine.count(u"edit"_s), 1);
}

TEST_F(SavedAtTheEnd, ATextThatLacksACorrectionIsSharedAfterAWord)
{
    ViewerWindow *opened = openWithThreeEdits();
    const test::Environment temporary("TMPDIR", QFile::encodeName(m_calls.path()));
    test::writeFile(callDir(u"a"_s) + u"/transcript.raw.txt"_s, "Old");
    opened->findChild<QPushButton *>(u"shareWindowText"_s)->click();
    auto *patience = opened->findChild<QTimer *>(u"patience"_s);
    patience->start(0);
    ASSERT_TRUE(waitFor([] { return sheet() != nullptr; }));
    EXPECT_EQ(sheet()->text().message, u"A correction to “a” was not saved"_s);
    EXPECT_EQ(sheet()->text().detail, u"The text is without it."_s);
    const QString shared = m_calls.filePath(u"Tuppi Transcriber/a.txt"_s);
    EXPECT_FALSE(QFile::exists(shared));
    sheet()->answer(0);
    EXPECT_TRUE(waitFor([&] { return QFile::exists(shared); }));
    EXPECT_EQ(test::readFile(shared), "Old");
    m_engine.openGate("gate");
    EXPECT_TRUE(waitFor([this] { return savedTexts() == allThree; }));
}

TEST_F(SavedAtTheEnd, ATextWhoseCorrectionFailedIsSharedAfterAWord)
{
    ViewerWindow *opened = openWithThreeEdits(test::Answer::failure(1, "Error: disk full\n"));
    qputenv("TMPDIR", QFile::encodeName(m_calls.path()));
    const auto restore = qScopeGuard([] { qunsetenv("TMPDIR"); });
    test::writeFile(callDir(u"a"_s) + u"/transcript.raw.txt"_s, "Old");
    opened->findChild<QPushButton *>(u"shareWindowText"_s)->click();
    m_engine.openGate("gate");
    ASSERT_TRUE(waitFor([] { return sheet() != nullptr; }));
    EXPECT_EQ(sheet()->text().detail, u"The text is without it."_s);
    EXPECT_EQ(savedTexts(), allThree) << "the others are not held up";
    const QString shared = m_calls.filePath(u"Tuppi Transcriber/a.txt"_s);
    EXPECT_FALSE(QFile::exists(shared));
    sheet()->answer(0);
    EXPECT_TRUE(waitFor([&] { return QFile::exists(shared); }));
}

TEST_F(SavedAtTheEnd, AFolderGoesToTheTrashWithAllThatWasCorrected)
{
    const QPointer<ViewerWindow> opened = openWithThreeEdits();
    m_app->removeRow(u"id-a"_s);
    ASSERT_TRUE(waitFor([] { return sheet() != nullptr; }));
    sheet()->answer(1);
    EXPECT_TRUE(becomes(opened, u"state.editor === null"_s, "true")) << "an open edit is as good as done";
    EXPECT_TRUE(QFile::exists(callDir(u"a"_s)));
    m_engine.openGate("gate");
    ASSERT_TRUE(waitFor([this] { return !QFile::exists(callDir(u"a"_s)); }));
    EXPECT_EQ(savedTexts(), allThree);
    EXPECT_TRUE(waitFor([&] { return opened.isNull(); }));
    EXPECT_EQ(sheet(), nullptr);
}

} // namespace
