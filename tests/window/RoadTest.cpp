// One recording's way over the screen, from the drop to the finished transcript.

#include "window/WindowTest.h"

#include "ui/Colours.h"
#include "ui/ModelCard.h"

#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::Answer;
using test::click;
using test::Drag;
using test::focusName;
using test::job;
using test::press;
using test::Shown;
using test::tabTo;
using test::waitFor;

namespace {

const QString done = u"Done · 2025-03-14 10:22 · 42 min · Whisper Turbo"_s;
const QStringList workButtons{u"Pause/1"_s, u"Cancel/2"_s};
const QStringList pausedButtons{u"Resume/1"_s, u"Cancel/2"_s};
const QStringList readyButtons{u"Open/0"_s, u"Summary/1"_s, u"Copy Text/1"_s, u"folder"_s, u"trash"_s};

class Road : public test::WindowTest
{
protected:
    void SetUp() override
    {
        m_engine.keepBook("queued");
        m_file = m_engine.recording(u"Interview.mp3"_s);
    }
    /// The engine is slow twice: before its first history and before it takes the file.
    void openWithSlowEngine()
    {
        m_engine.answerCall(u"history"_s, 1, Answer::script("locked book_list").heldAt("history"));
        m_engine.answer(u"process"_s, Answer::script(R"(locked book_add "$2")").heldAt("taken"));
        openEarly();
    }
    static QJsonObject interview(const QString &status, bool paused = false)
    {
        return job(u"job-1"_s, u"Interview"_s, status, paused);
    }
    void become(const QString &status, const QByteArray &progress = {})
    {
        m_engine.setJob(1, interview(status));
        m_engine.answerStatus(progress.isEmpty()
                                  ? R"({"latest_job":null})"
                                  : R"({"latest_job":{"id":"job-1","progress":")" + progress + R"("}})");
        poll();
    }
    /// The engine obeys a command: the job is then as given.
    void obey(const QString &subcommand, const QJsonObject &after)
    {
        m_engine.answer(subcommand, Answer::script("become() { printf '%s' '" +
                                                   QJsonDocument(after).toJson(QJsonDocument::Compact) +
                                                   "' >\"$root/book/00000001.job\"; }\nlocked become"));
    }

    void dropAndStart();
    void waitInLineAndBeTaken();
    void pauseAndResumeByMouse();
    void chooseByKeyboard();
    void startByKeyboard();
    void pauseAndResumeByKeyboard();
    void cancelByKeyboard();

    QString m_file;
};

void Road::dropAndStart()
{
    EXPECT_EQ(summary(), u"Preparing…"_s);
    EXPECT_FALSE(isEmptyStateShown());
    Drag drag(QStringList{m_file});
    EXPECT_TRUE(drag.enter(dropArea()));
    EXPECT_TRUE(dropArea()->isHighlighted());
    EXPECT_TRUE(drag.move(dropArea()));
    EXPECT_EQ(panel(), nullptr);
    EXPECT_TRUE(drag.drop(dropArea()));
    EXPECT_FALSE(dropArea()->isHighlighted());
    ASSERT_NE(panel(), nullptr);
    EXPECT_EQ(panelFiles(), QStringList{u"Interview.mp3"_s});
    EXPECT_EQ(startButton()->title(), u"Start Transcription"_s);
    click(startButton());
    ASSERT_TRUE(panelCloses());
}

void Road::waitInLineAndBeTaken()
{
    EXPECT_EQ(shown(u"wait:"_s + m_file),
              (Shown{u"Interview"_s, u"Waiting in line…"_s, u"waiting"_s, true, -2, {u"Remove/1"_s}, false}));
    EXPECT_EQ(summary(), u"Working on 1 file · 1 waiting"_s);
    m_engine.openGate("history");
    ASSERT_TRUE(rowSays(u"starting"_s, u"Copying the file…"_s));
    EXPECT_EQ(shown(u"starting"_s),
              (Shown{u"Preparing…"_s, u"Copying the file…"_s, u"listening"_s, false, -1, {}, false}));
    EXPECT_EQ(list()->content().size(), 1);
    EXPECT_EQ(summary(), u"Working on 1 file"_s);
    m_engine.openGate("taken");
    ASSERT_TRUE(rowSays(u"job-1"_s, u"Starting…"_s));
    EXPECT_EQ(shown(u"job-1"_s),
              (Shown{u"Interview"_s, u"Starting…"_s, u"listening"_s, true, -1, workButtons, true}));
    EXPECT_EQ(list()->content().size(), 1);
    EXPECT_EQ(row(u"job-1"_s)->detail()->colour(), Colours::slate);
}

void Road::pauseAndResumeByMouse()
{
    obey(u"pause"_s, interview(u"transcribing"_s, true));
    click(rowButton(u"job-1"_s, u"pauseRow"_s));
    ASSERT_TRUE(rowSays(u"job-1"_s, u"Paused — Listening and writing down… 45%"_s));
    EXPECT_EQ(m_engine.calls(u"pause"_s), QList<QStringList>({{u"pause"_s, u"job-1"_s}}));
    EXPECT_EQ(shown(u"job-1"_s), (Shown{u"Interview"_s, u"Paused — Listening and writing down… 45%"_s,
                                        u"waiting"_s, false, 0.45, pausedButtons, true}));
    EXPECT_EQ(summary(), u"Paused"_s);
    obey(u"continue"_s, interview(u"transcribing"_s));
    click(rowButton(u"job-1"_s, u"resumeRow"_s));
    ASSERT_TRUE(rowSays(u"job-1"_s, u"Listening and writing down… 45%"_s));
    EXPECT_EQ(m_engine.calls(u"continue"_s), QList<QStringList>({{u"continue"_s, u"job-1"_s}}));
    EXPECT_EQ(summary(), u"Working on 1 file"_s);
}

TEST_F(Road, ByMouse)
{
    openWithSlowEngine();
    ASSERT_NO_FATAL_FAILURE(dropAndStart());
    ASSERT_NO_FATAL_FAILURE(waitInLineAndBeTaken());

    become(u"transcribing"_s, "45%");
    EXPECT_EQ(shown(u"job-1"_s), (Shown{u"Interview"_s, u"Listening and writing down… 45%"_s, u"listening"_s,
                                        true, 0.45, workButtons, true}));
    ASSERT_NO_FATAL_FAILURE(pauseAndResumeByMouse());
    become(u"analyzing"_s, "12/40");
    EXPECT_EQ(shown(u"job-1"_s), (Shown{u"Interview"_s, u"Writing the summary… 12/40"_s, u"writing"_s, true,
                                        0.3, workButtons, true}));
    become(u"cleaning"_s);
    EXPECT_EQ(shown(u"job-1"_s),
              (Shown{u"Interview"_s, u"Polishing the text…"_s, u"writing"_s, true, -1, workButtons, true}));
    become(u"ready"_s);
    EXPECT_EQ(shown(u"job-1"_s), (Shown{u"Interview"_s, done, u"done"_s, false, -2, readyButtons, false}));
    EXPECT_EQ(row(u"job-1"_s)->detail()->colour(), Colours::good);
    EXPECT_EQ(summary(), u"1 transcript"_s);
    EXPECT_TRUE(m_failures.isEmpty());
}

TEST_F(Road, FailureIsShownAndTriedAgainByMouse)
{
    openWindow();
    QJsonObject failed = interview(u"failed"_s);
    failed[u"error"_s] = u"Запис містить тишу"_s;
    m_engine.setJob(1, failed);
    poll();
    EXPECT_EQ(shown(u"job-1"_s), (Shown{u"Interview"_s,
                                        u"Failed — No speech found in this recording"_s,
                                        u"oops"_s,
                                        true,
                                        -2,
                                        {u"Try Again/1"_s, u"trash"_s},
                                        false}));
    EXPECT_EQ(row(u"job-1"_s)->detail()->colour(), Colours::attention);
    obey(u"retry"_s, interview(u"queued"_s));
    click(rowButton(u"job-1"_s, u"retryRow"_s));
    ASSERT_TRUE(rowSays(u"job-1"_s, u"Starting…"_s));
    EXPECT_EQ(m_engine.calls(u"retry"_s), QList<QStringList>({{u"retry"_s, u"job-1"_s}}));
}

TEST_F(Road, CancelAsksFirst)
{
    m_engine.setJob(1, interview(u"transcribing"_s));
    openWindow();
    obey(u"cancel"_s, interview(u"cancelled"_s));
    click(rowButton(u"job-1"_s, u"cancelRow"_s));
    ASSERT_NE(sheet(), nullptr);
    EXPECT_EQ(sheet()->text().message, u"Cancel “Interview”?"_s);
    EXPECT_EQ(sheet()->text().detail,
              u"Processing stops now. Finished steps are kept, so you can press Start Again later."_s);
    EXPECT_EQ(sheetButtons(), (QStringList{u"Keep Going"_s, u"Cancel Transcription"_s}));
    click(sheet()->findChild<PillButton *>(u"sheetButton0"_s));
    ASSERT_TRUE(sheetCloses());
    settle();
    EXPECT_EQ(m_engine.count(u"cancel"_s), 0);

    click(rowButton(u"job-1"_s, u"cancelRow"_s));
    ASSERT_NE(sheet(), nullptr);
    EXPECT_EQ(sheet()->findChild<PillButton *>(u"sheetButton1"_s)->pill(), 2);
    click(sheet()->findChild<PillButton *>(u"sheetButton1"_s));
    ASSERT_TRUE(rowSays(u"job-1"_s, u"Cancelled — press Start Again to continue where it stopped"_s));
    EXPECT_EQ(shown(u"job-1"_s), (Shown{u"Interview"_s,
                                        u"Cancelled — press Start Again to continue where it stopped"_s,
                                        u"oops"_s,
                                        false,
                                        -2,
                                        {u"Start Again/1"_s, u"trash"_s},
                                        false}));
    EXPECT_EQ(m_engine.calls(u"cancel"_s), QList<QStringList>({{u"cancel"_s, u"job-1"_s}}));
}

TEST_F(Road, WaitingFileIsRemovedByMouse)
{
    m_engine.setJob(1, interview(u"transcribing"_s));
    openWindow();
    m_app->enqueue({m_file}, m_choices);
    ASSERT_NE(rowButton(u"wait:"_s + m_file, u"removeWaiting"_s), nullptr);
    EXPECT_EQ(summary(), u"Working on 1 file · 1 waiting"_s);
    click(rowButton(u"wait:"_s + m_file, u"removeWaiting"_s));
    EXPECT_EQ(row(u"wait:"_s + m_file), nullptr);
    EXPECT_EQ(summary(), u"Working on 1 file"_s);
    EXPECT_EQ(storedPaths(), QStringList());
}

void Road::chooseByKeyboard()
{
    press(Qt::Key_O, Qt::ControlModifier);
    QPointer<QFileDialog> dialog = window()->findChild<QFileDialog *>(u"chooseFiles"_s);
    ASSERT_TRUE(dialog);
    ASSERT_TRUE(waitFor([&] { return dialog->isActiveWindow(); }));
    ASSERT_TRUE(tabTo(u"fileNameEdit"_s));
    // At once, and not key by key: the dialog's own suggestions are no part of the road.
    qobject_cast<QLineEdit *>(QApplication::focusWidget())->setText(m_file);
    press(Qt::Key_Return);
    ASSERT_TRUE(waitFor([&] { return !dialog; }));
    ASSERT_NE(panel(), nullptr);
}

void Road::startByKeyboard()
{
    panel()->activateWindow();
    ASSERT_TRUE(waitFor([this] { return panel()->isActiveWindow(); }));
    EXPECT_EQ(focusName(), u"startButton"_s);
    ASSERT_TRUE(tabTo(u"model.whisper"_s));
    press(Qt::Key_Space);
    ASSERT_TRUE(tabTo(u"quick"_s));
    press(Qt::Key_Space);
    press(Qt::Key_Return);
    ASSERT_TRUE(panelCloses());
    ASSERT_TRUE(rowSays(u"job-1"_s, u"Starting…"_s));
    EXPECT_EQ(m_engine.calls(u"process"_s),
              QList<QStringList>(
                  {{u"process"_s, m_file, u"--background"_s, u"--engine"_s, u"whisper"_s, u"--language"_s,
                    u"en"_s, u"--no-clean"_s, u"--no-analyze"_s, u"--speakers"_s}}));
    activate();
}

void Road::pauseAndResumeByKeyboard()
{
    ASSERT_TRUE(tabTo(u"table"_s));
    press(Qt::Key_Down);
    EXPECT_EQ(list()->selectedKey(), u"job-1"_s);
    press(Qt::Key_Tab);
    EXPECT_EQ(focusName(), u"pauseRow"_s);
    obey(u"pause"_s, interview(u"transcribing"_s, true));
    press(Qt::Key_Space);
    ASSERT_TRUE(rowSays(u"job-1"_s, u"Paused — Listening and writing down…"_s));
    // The keyboard is where it was: the same button now resumes.
    EXPECT_EQ(focusName(), u"resumeRow"_s);
    obey(u"continue"_s, interview(u"transcribing"_s));
    press(Qt::Key_Space);
    ASSERT_TRUE(rowSays(u"job-1"_s, u"Listening and writing down…"_s));
    EXPECT_EQ(focusName(), u"pauseRow"_s);
}

void Road::cancelByKeyboard()
{
    obey(u"cancel"_s, interview(u"cancelled"_s));
    press(Qt::Key_Tab);
    EXPECT_EQ(focusName(), u"cancelRow"_s);
    press(Qt::Key_Space);
    ASSERT_NE(sheet(), nullptr);
    ASSERT_TRUE(waitFor([this] { return sheet()->isActiveWindow(); }));
    press(Qt::Key_Return);
    ASSERT_TRUE(sheetCloses());
    settle();
    EXPECT_EQ(m_engine.count(u"cancel"_s), 0) << "Return keeps going";

    activate();
    EXPECT_EQ(focusName(), u"cancelRow"_s);
    press(Qt::Key_Return);
    ASSERT_NE(sheet(), nullptr);
    ASSERT_TRUE(waitFor([this] { return sheet()->isActiveWindow(); }));
    press(Qt::Key_Escape);
    ASSERT_TRUE(sheetCloses());
    settle();
    EXPECT_EQ(m_engine.count(u"cancel"_s), 0) << "Escape keeps going";

    activate();
    press(Qt::Key_Space);
    ASSERT_TRUE(waitFor([this] { return sheet() && sheet()->isActiveWindow(); }));
    ASSERT_TRUE(tabTo(u"sheetButton1"_s));
    press(Qt::Key_Space);
    ASSERT_TRUE(rowSays(u"job-1"_s, u"Cancelled — press Start Again to continue where it stopped"_s));
    activate();
}

TEST_F(Road, ByKeyboardAlone)
{
    openWindow();
    ASSERT_NO_FATAL_FAILURE(chooseByKeyboard());
    ASSERT_NO_FATAL_FAILURE(startByKeyboard());
    become(u"transcribing"_s);
    ASSERT_NO_FATAL_FAILURE(pauseAndResumeByKeyboard());
    ASSERT_NO_FATAL_FAILURE(cancelByKeyboard());
    ASSERT_TRUE(tabTo(u"retryRow"_s));
    obey(u"retry"_s, interview(u"transcribing"_s));
    press(Qt::Key_Space);
    ASSERT_TRUE(rowSays(u"job-1"_s, u"Listening and writing down…"_s));
    become(u"ready"_s);
    EXPECT_EQ(shown(u"job-1"_s), (Shown{u"Interview"_s, done, u"done"_s, false, -2, readyButtons, false}));
    ASSERT_TRUE(tabTo(u"openRowViewer"_s));
}

} // namespace
