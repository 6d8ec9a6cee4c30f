// How files come in through the window, and what does not.

#include "window/WindowTest.h"

#include "ui/ModelCard.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::Answer;
using test::click;
using test::Drag;
using test::job;
using test::press;
using test::Shown;
using test::waitFor;

namespace {

class Intake : public test::WindowTest
{
protected:
    QString other(const QString &name)
    {
        const QString path = m_engine.home() + u'/' + name;
        test::writeFile(path, "text");
        return path;
    }
    QString folder(const QString &name)
    {
        QDir().mkpath(m_engine.home() + u'/' + name);
        return m_engine.home() + u'/' + name;
    }
    static QUrl url(const QString &path) { return QUrl::fromLocalFile(path); }
    /// Drops it and says whether it was taken.
    bool drop(const QStringList &paths, QWidget *over)
    {
        Drag drag(paths);
        drag.enter(over);
        return drag.drop(over);
    }
    /// Started with a recording while a model of the person's own is the stored choice; the engine has not told of
    /// its models yet, and will tell that.
    void openAtLaunch(const QByteArray &models)
    {
        Defaults(settingsPath()).setValue(u"engine"_s, u"custom:a"_s);
        m_engine.answer(u"models"_s, Answer{models}.heldAt("models"));
        openWindow();
        m_app->openUrls({url(m_engine.recording(u"talk.m4a"_s))});
        ASSERT_NE(panel(), nullptr);
    }
    ModelCard *card(const QString &engine) const { return panel()->findChild<ModelCard *>(u"model."_s + engine); }
    QStringList offered() const
    {
        QStringList engines;
        for (const ModelCard *card : panel()->findChildren<ModelCard *>())
            engines.append(card->engine());
        return engines;
    }
    QString picked() const
    {
        QStringList engines;
        for (const ModelCard *card : panel()->findChildren<ModelCard *>()) {
            if (card->isPicked())
                engines.append(card->engine());
        }
        return engines.join(u' ');
    }
    /// The model that the one file was started with.
    QString startedWith()
    {
        click(startButton());
        EXPECT_TRUE(panelCloses());
        EXPECT_TRUE(processCalls(1));
        const QStringList call = m_engine.calls(u"process"_s).value(0);
        return call.value(call.indexOf(u"--engine"_s) + 1);
    }
};

constexpr auto twoModels = R"({"custom":[{"id":"a","name":"Ada"},{"id":"b","name":"Ben"}]})";

TEST_F(Intake, OfAMixedDropOnlyTheRecordingComesIn)
{
    openWindow();
    Drag drag(
        QStringList{m_engine.recording(u"Interview.MP3"_s), other(u"notes.txt"_s), folder(u"Recordings"_s)});
    EXPECT_TRUE(drag.enter(dropArea()));
    EXPECT_TRUE(dropArea()->isHighlighted());
    EXPECT_TRUE(drag.drop(dropArea()));
    EXPECT_FALSE(dropArea()->isHighlighted());
    ASSERT_NE(panel(), nullptr);
    EXPECT_EQ(panelFiles(), QStringList{u"Interview.MP3"_s});
}

TEST_F(Intake, ADropWithoutARecordingIsRefused)
{
    openWindow();
    Drag drag(QStringList{other(u"notes.txt"_s)});
    EXPECT_FALSE(drag.enter(dropArea()));
    EXPECT_FALSE(dropArea()->isHighlighted());
    EXPECT_FALSE(drag.move(dropArea()));
    EXPECT_FALSE(drag.drop(dropArea()));
    EXPECT_EQ(panel(), nullptr);
}

TEST_F(Intake, TheLightGoesOutWhenTheDragLeaves)
{
    openWindow();
    Drag drag(QStringList{m_engine.recording(u"a.m4a"_s)});
    EXPECT_TRUE(drag.enter(dropArea()));
    EXPECT_TRUE(dropArea()->isHighlighted());
    drag.leave(dropArea());
    EXPECT_FALSE(dropArea()->isHighlighted());
    EXPECT_EQ(panel(), nullptr);
}

TEST_F(Intake, AFileDroppedTwiceIsListedOnce)
{
    openWindow();
    const QString a = m_engine.recording(u"a.m4a"_s);
    EXPECT_TRUE(drop({a}, dropArea()));
    ASSERT_NE(panel(), nullptr);
    SetupPanel *const first = panel();
    window()->showMinimized();
    // Onto the panel, which takes files all over.
    EXPECT_TRUE(drop({a}, panel()->findChild<DropView *>()));
    EXPECT_EQ(panel(), first);
    EXPECT_EQ(panelFiles(), QStringList{u"a.m4a"_s});
    EXPECT_EQ(startButton()->title(), u"Start Transcription"_s);
    EXPECT_FALSE(window()->isMinimized()) << "a second drop brings the window forward all the same";
}

TEST_F(Intake, ASecondDropExtendsTheBatch)
{
    openWindow();
    EXPECT_TRUE(drop({m_engine.recording(u"a.m4a"_s)}, dropArea()));
    ASSERT_NE(panel(), nullptr);
    EXPECT_TRUE(drop({m_engine.recording(u"b.m4a"_s)}, panel()->findChild<QWidget *>(u"quick"_s)));
    EXPECT_EQ(panelFiles(), (QStringList{u"a.m4a"_s, u"b.m4a"_s}));
    EXPECT_EQ(startButton()->title(), u"Start Transcription (2 files)"_s);
}

TEST_F(Intake, AFileTwiceInOneOpenRequestIsListedOnce)
{
    openWindow();
    const QUrl a = url(m_engine.recording(u"a.m4a"_s));
    m_app->openUrls({a, url(other(u"notes.txt"_s)), a});
    ASSERT_NE(panel(), nullptr);
    EXPECT_EQ(panelFiles(), QStringList{u"a.m4a"_s});
}

TEST_F(Intake, AnOpenRequestWithoutARecordingDoesNothing)
{
    openWindow();
    window()->close();
    for (const QString &path : {other(u"notes.txt"_s), other(u"song.m4v"_s), folder(u"Recordings"_s)})
        m_app->openUrls({url(path)});
    m_app->openUrls({});
    EXPECT_EQ(window()->findChild<SetupPanel *>(), nullptr);
    EXPECT_FALSE(window()->isVisible());
    m_app->openUrls({url(m_engine.recording(u"a.m4a"_s))});
    EXPECT_TRUE(window()->isVisible());
    EXPECT_NE(panel(), nullptr);
}

TEST_F(Intake, OnlyARecordingBringsTheWindowForward)
{
    openWindow();
    window()->close();
    m_app->openRequested({url(other(u"song.m4v"_s))}, {});
    m_app->openRequested({}, {});
    EXPECT_FALSE(window()->isVisible());
    EXPECT_EQ(window()->findChild<SetupPanel *>(), nullptr);
    m_app->openRequested({url(other(u"song.m4v"_s)), url(m_engine.recording(u"a.m4a"_s))}, {});
    EXPECT_TRUE(window()->isVisible());
    EXPECT_EQ(panelFiles(), QStringList{u"a.m4a"_s});
}

TEST_F(Intake, TheFileDialogTakesWhatADropRefuses)
{
    openWindow();
    const QString song = other(u"song.m4v"_s);
    EXPECT_FALSE(drop({song}, dropArea()));
    m_app->chooseFiles();
    QPointer<QFileDialog> dialog = window()->findChild<QFileDialog *>(u"chooseFiles"_s);
    ASSERT_TRUE(dialog);
    ASSERT_TRUE(waitFor([&] { return dialog->isActiveWindow(); }));
    auto *name = dialog->findChild<QLineEdit *>(u"fileNameEdit"_s);
    ASSERT_NE(name, nullptr);
    name->setFocus();
    name->setText(song);
    press(Qt::Key_Return);
    ASSERT_TRUE(waitFor([&] { return !dialog; }));
    ASSERT_NE(panel(), nullptr);
    EXPECT_EQ(panelFiles(), QStringList{u"song.m4v"_s});
}

TEST_F(Intake, ADismissedFileDialogAddsNothing)
{
    openWindow();
    m_app->chooseFiles();
    QPointer<QFileDialog> dialog = window()->findChild<QFileDialog *>(u"chooseFiles"_s);
    ASSERT_TRUE(dialog);
    ASSERT_TRUE(waitFor([&] { return dialog->isActiveWindow(); }));
    press(Qt::Key_Escape);
    ASSERT_TRUE(waitFor([&] { return !dialog; }));
    EXPECT_EQ(panel(), nullptr);
}

TEST_F(Intake, TheListTakesADropAsTheEmptyStateDoes)
{
    m_engine.answerHistory(test::historyOf(test::readyJobs(8)));
    openWindow();
    ASSERT_FALSE(isEmptyStateShown());
    for (QWidget *over :
         {static_cast<QWidget *>(row(u"job-1"_s)),
          static_cast<QWidget *>(rowButton(u"job-2"_s, u"openRowText"_s)), list()->viewport()}) {
        Drag refused(QStringList{other(u"notes.txt"_s)});
        EXPECT_FALSE(refused.enter(over));
        EXPECT_FALSE(dropArea()->isHighlighted());
        EXPECT_FALSE(refused.drop(over));
        EXPECT_EQ(panel(), nullptr);

        Drag drag(QStringList{m_engine.recording(u"Interview.MP3"_s), other(u"notes.txt"_s),
                              folder(u"Recordings"_s)});
        EXPECT_TRUE(drag.enter(over));
        EXPECT_TRUE(dropArea()->isHighlighted());
        EXPECT_TRUE(drag.move(over));
        EXPECT_TRUE(drag.drop(over));
        EXPECT_FALSE(dropArea()->isHighlighted());
        ASSERT_NE(panel(), nullptr);
        EXPECT_EQ(panelFiles(), QStringList{u"Interview.MP3"_s});
        click(panel()->findChild<PillButton *>(u"cancelButton"_s));
        ASSERT_TRUE(panelCloses());
    }
    EXPECT_EQ(list()->content().size(), 8);
}

TEST_F(Intake, ACancelledPanelLeavesNothingBehind)
{
    openWindow();
    EXPECT_TRUE(drop({m_engine.recording(u"a.m4a"_s)}, dropArea()));
    ASSERT_NE(panel(), nullptr);
    ASSERT_TRUE(waitFor([this] { return panel()->isActiveWindow(); }));
    press(Qt::Key_Escape);
    ASSERT_TRUE(panelCloses());
    EXPECT_TRUE(isEmptyStateShown());
    EXPECT_EQ(waitingPaths(), QStringList());
    EXPECT_TRUE(drop({m_engine.recording(u"b.m4a"_s)}, dropArea()));
    ASSERT_NE(panel(), nullptr);
    EXPECT_EQ(panelFiles(), QStringList{u"b.m4a"_s});
}

TEST_F(Intake, AnOpenPanelGetsTheModelsWhenTheyCome)
{
    openAtLaunch(twoModels);
    EXPECT_EQ(picked(), u"custom:a"_s);
    m_engine.openGate("models");
    ASSERT_TRUE(waitFor([this] { return card(u"custom:b"_s) != nullptr; }));
    EXPECT_EQ(offered(), (QStringList{u"auto"_s, u"parakeet"_s, u"whisper"_s, u"whisper-large"_s, u"custom:a"_s,
                                      u"custom:b"_s}));
    EXPECT_EQ(picked(), u"custom:a"_s);
    EXPECT_EQ(card(u"custom:a"_s)->accessibleName(), u"Ada (custom)"_s);
    ASSERT_TRUE(waitFor([this] { return card(u"custom:b"_s)->isVisible(); }));
    click(card(u"custom:b"_s));
    EXPECT_EQ(picked(), u"custom:b"_s);
    EXPECT_EQ(startedWith(), u"custom:b"_s);
}

TEST_F(Intake, AModelOfOnesOwnCanBeStartedWithBeforeTheEngineTellsOfIt)
{
    openAtLaunch(twoModels);
    EXPECT_EQ(startedWith(), u"custom:a"_s);
    EXPECT_EQ(m_defaults->text(u"engine"_s), u"custom:a"_s);
    m_engine.openGate("models");
    ASSERT_TRUE(waitFor([this] { return !m_app->models().custom.isEmpty(); }));
    EXPECT_EQ(m_defaults->text(u"engine"_s), u"custom:a"_s);
}

TEST_F(Intake, WhatThePersonHasChosenStaysWhenTheModelsCome)
{
    openAtLaunch(twoModels);
    ASSERT_TRUE(waitFor([this] { return panel()->isActiveWindow(); }));
    click(card(u"whisper"_s));
    card(u"whisper"_s)->setFocus();
    m_engine.openGate("models");
    ASSERT_TRUE(waitFor([this] { return card(u"custom:b"_s) != nullptr; }));
    EXPECT_EQ(picked(), u"whisper"_s);
    EXPECT_EQ(panel()->focusWidget(), card(u"whisper"_s));
    EXPECT_TRUE(test::tabTo(u"model.custom:b"_s));
    EXPECT_TRUE(test::tabTo(u"language"_s));
}

TEST_F(Intake, AModelThatIsGoneGivesWayToTheFirstWhenTheModelsCome)
{
    openAtLaunch(R"({"custom":[]})");
    m_engine.openGate("models");
    ASSERT_TRUE(waitFor([this] { return picked() == u"auto"_s; }));
    EXPECT_EQ(offered().size(), 4);
    EXPECT_EQ(startedWith(), u"auto"_s);
}

TEST_F(Intake, AFileAlreadyWaitingIsListedAgainAndNotQueuedTwice)
{
    m_engine.answerHistory(test::historyOf({job(u"job-1"_s, u"Talk"_s, u"transcribing"_s)}));
    openWindow();
    const QString a = m_engine.recording(u"a.m4a"_s);
    for (int time = 0; time < 2; ++time) {
        EXPECT_TRUE(drop({a}, dropArea()));
        ASSERT_NE(panel(), nullptr);
        EXPECT_EQ(panelFiles(), QStringList{u"a.m4a"_s});
        click(startButton());
        ASSERT_TRUE(panelCloses());
    }
    EXPECT_EQ(waitingPaths(), QStringList{a});
    EXPECT_EQ(rowKeys(), (QStringList{u"wait:"_s + a, u"job-1"_s}));
}

TEST_F(Intake, WaitingFilesWithOneTitleMoveApart)
{
    m_engine.answerHistory(test::historyOf({job(u"job-1"_s, u"Talk"_s, u"transcribing"_s)}));
    openWindow();
    folder(u"monday"_s);
    folder(u"tuesday"_s);
    const QString monday = m_engine.recording(u"monday/standup.wav"_s);
    const QString tuesday = m_engine.recording(u"tuesday/standup.wav"_s);
    m_app->enqueue({monday, tuesday}, m_choices);
    const RowView *one = row(u"wait:"_s + monday);
    const RowView *two = row(u"wait:"_s + tuesday);
    ASSERT_TRUE(one && two);
    EXPECT_EQ(one->title()->text(), u"standup"_s);
    EXPECT_EQ(two->title()->text(), u"standup"_s);
    ASSERT_TRUE(one->icon() && two->icon());
    EXPECT_NE(one->icon(), two->icon());
    EXPECT_TRUE(one->icon()->isVisible() && two->icon()->isVisible());

    click(rowButton(u"wait:"_s + monday, u"removeWaiting"_s));
    EXPECT_EQ(waitingPaths(), QStringList{tuesday}) << "the button removes its own file";
}

} // namespace
