// The commands of a row and of the list, by mouse and keyboard.

#include "support/Drive.h"
#include "window/Desktop.h"
#include "window/WindowTest.h"

#include "actions/Menus.h"
#include "viewer/ResultWindow.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QMenu>
#include <QScreen>
#include <QScrollArea>
#include <QTest>

#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::Answer;
using test::click;
using test::job;
using test::press;
using test::waitFor;

namespace {

using Calls = QList<QStringList>;

class RowCommands : public test::WindowTest
{
protected:
    /// A finished job whose folder exists.
    QJsonObject call(const QString &id, const QString &title)
    {
        QJsonObject entry = job(id, title, u"ready"_s);
        const QString folder = library() + u'/' + title;
        QDir().mkpath(folder);
        test::writeFile(folder + u"/call.md"_s, "text");
        entry.insert(u"call_dir"_s, folder);
        return entry;
    }
    QString library() const { return m_engine.home() + u"/Documents/CallsRawFiles"_s; }
    QString trash() const { return m_engine.home() + u"/.local/share/Trash"_s; }
    QStringList trashed() const { return QDir(trash() + u"/files"_s).entryList(QDir::AllEntries | QDir::NoDotAndDotDot); }

    void openWith(const QList<QJsonObject> &jobs)
    {
        m_engine.answerHistory(test::historyOf(jobs));
        ASSERT_NO_FATAL_FAILURE(openWindow());
    }
    /// Through the context menu, as a person would.
    void choose(const QString &key, const QString &action)
    {
        click(row(key)->title(), Qt::RightButton);
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr);
        auto *item = menu->findChild<QAction *>(action);
        ASSERT_TRUE(item && item->isEnabled()) << qPrintable(action);
        QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(item).center());
    }
    void chooseInMenuBar(const QString &action) { window()->findChild<QAction *>(action)->trigger(); }
    /// The names of the folders whose windows are open.
    QStringList shownTranscripts() const
    {
        QStringList names;
        for (const ResultWindow *open : m_app->viewer().resultWindows)
            names.append(QFileInfo(open->plan().callDir).fileName());
        names.sort();
        return names;
    }
    PillButton *sheetButton(int index) const { return sheet()->findChild<PillButton *>(u"sheetButton%1"_s.arg(index)); }
    QString defaultButton() const
    {
        for (const PillButton *button : sheet()->findChildren<PillButton *>()) {
            if (button->isDefault())
                return button->title();
        }
        return {};
    }
    void answer(int button)
    {
        click(sheetButton(button));
        ASSERT_TRUE(sheetCloses());
        activate();
    }
    bool called(const QString &subcommand, const Calls &calls)
    {
        return waitFor([&] { return m_engine.calls(subcommand) == calls; });
    }
    bool sheetSays(const QString &message)
    {
        return waitFor([&] { return sheet() && sheet()->text().message == message; });
    }
};

// Copy Text

TEST_F(RowCommands, CopyTextIsTheEnginesWorkAndSaysSo)
{
    openWith({call(u"a"_s, u"A"_s)});
    click(rowButton(u"a"_s, u"copyRowText"_s));
    EXPECT_TRUE(waitFor([this] { return summary() == u"Text copied — paste it anywhere with ⌘V"_s; }));
    EXPECT_EQ(m_engine.calls(u"copy"_s), (Calls{{u"copy"_s, u"transcript"_s, u"a"_s}}));
    EXPECT_EQ(sheet(), nullptr);
}

TEST_F(RowCommands, ACopyThatFailsIsTold)
{
    m_engine.answer(u"copy"_s, Answer::failure(1, "Error: no clipboard"));
    openWith({call(u"a"_s, u"A"_s)});
    choose(u"a"_s, u"copyRowText"_s);
    EXPECT_TRUE(waitFor([this] { return summary() == u"Could not copy the text"_s; }));
    EXPECT_EQ(sheet(), nullptr);
}

// Show in Finder, Show All Transcripts in Finder

TEST_F(RowCommands, ShowInFinderOpensTheFolderAroundWhereNothingBetterIsThere)
{
    test::Openings openings;
    openWith({call(u"a"_s, u"A"_s)});
    click(rowButton(u"a"_s, u"showRowInFinder"_s));
    EXPECT_TRUE(waitFor([&] { return openings.paths == QStringList{library()}; }));
}

TEST_F(RowCommands, ShowInFinderOfAFolderThatIsGoneSaysSo)
{
    test::Openings openings;
    openWith({job(u"a"_s, u"A"_s, u"ready"_s), QJsonObject{{u"id"_s, u"b"_s}, {u"status"_s, u"ready"_s}}});
    m_app->showRowInFinder(u"b"_s);
    EXPECT_EQ(summary(), u"2 transcripts"_s) << "without a folder there is nothing to say";
    click(rowButton(u"a"_s, u"showRowInFinder"_s));
    EXPECT_EQ(summary(), u"The folder of this transcript is no longer there."_s);
    EXPECT_EQ(openings.paths, QStringList());
}

TEST_F(RowCommands, TheTranscriptsFolderIsMadeAndOpened)
{
    test::Openings openings;
    openWith({});
    ASSERT_FALSE(QFileInfo::exists(library()));
    click(window()->findChild<QWidget *>(u"folderButton"_s));
    EXPECT_TRUE(QFileInfo(library()).isDir());
    EXPECT_EQ(openings.paths, QStringList{library()});
    press(Qt::Key_L, Qt::ControlModifier);
    EXPECT_EQ(openings.paths, (QStringList{library(), library()}));

    const QString other = m_engine.home() + u"/Other calls"_s;
    m_engine.answerStatus(R"({"library":")" + other.toUtf8() + R"("})");
    poll();
    chooseInMenuBar(u"openLibrary"_s);
    EXPECT_EQ(openings.paths.constLast(), other);
}

TEST_F(RowCommands, OnlyWhatExistsIsOpened)
{
    test::Openings openings;
    openWith({});
    m_app->openPath({});
    m_app->openPath(m_engine.home() + u"/gone"_s);
    m_engine.answerStatus(R"({"library":"/proc/no/such/place"})");
    poll();
    chooseInMenuBar(u"openLibrary"_s);
    EXPECT_EQ(openings.paths, QStringList());
    m_app->openPath(m_engine.home());
    EXPECT_EQ(openings.paths, QStringList{m_engine.home()});
}

// Rename

TEST_F(RowCommands, RenameAsksWithTheTitleSelected)
{
    openWith({call(u"a"_s, u"Old name"_s)});
    choose(u"a"_s, u"renameRow"_s);
    ASSERT_NE(sheet(), nullptr);
    EXPECT_EQ(sheet()->text().message, u"Rename transcript"_s);
    EXPECT_EQ(sheetButtons(), (QStringList{u"Rename"_s, u"Cancel"_s}));
    EXPECT_EQ(defaultButton(), u"Rename"_s);
    auto *field = sheet()->findChild<QLineEdit *>();
    EXPECT_EQ(field->size(), QSize(320, 24));
    EXPECT_EQ(field->selectedText(), u"Old name"_s);
    ASSERT_TRUE(waitFor([&] { return QApplication::focusWidget() == field; }));
    test::type(u"  -New name "_s);
    press(Qt::Key_Return);
    EXPECT_TRUE(called(u"rename"_s, {{u"rename"_s, u"a"_s, u"--"_s, u"-New name"_s}}));
    EXPECT_TRUE(sheetCloses());
}

TEST_F(RowCommands, RenameToNothingDoesNothing)
{
    openWith({call(u"a"_s, u"A"_s)});
    for (const QString &typed : {u" "_s, u""_s, u" \t\u2003 "_s}) {
        choose(u"a"_s, u"renameRow"_s);
        sheet()->findChild<QLineEdit *>()->setText(typed);
        answer(0);
    }
    choose(u"a"_s, u"renameRow"_s);
    sheet()->findChild<QLineEdit *>()->setText(u"B"_s);
    answer(1);
    choose(u"a"_s, u"renameRow"_s);
    ASSERT_TRUE(waitFor([this] { return sheet() && sheet()->isActiveWindow(); }));
    sheet()->findChild<QLineEdit *>()->setText(u"B"_s);
    press(Qt::Key_Escape);
    ASSERT_TRUE(sheetCloses());
    settle();
    EXPECT_EQ(m_engine.count(u"rename"_s), 0);
}

TEST_F(RowCommands, APastedTitleBecomesOneLineThatTheEngineTakes)
{
    openWith({call(u"a"_s, u"A"_s)});
    const QList<QPair<QString, QString>> titles{{u" Minutes\r\nof\u2028the\tmeeting\n"_s, u"Minutes of the meeting"_s},
                                                {QString(600, u'x'), QString(500, u'x')}};
    Calls renamed;
    for (const auto &[pasted, title] : titles) {
        choose(u"a"_s, u"renameRow"_s);
        auto *field = sheet()->findChild<QLineEdit *>();
        field->selectAll();
        field->insert(pasted);
        answer(0);
        renamed.append({u"rename"_s, u"a"_s, u"--"_s, title});
        ASSERT_TRUE(called(u"rename"_s, renamed));
    }
}

TEST_F(RowCommands, AWorkingRowIsNotRenamed)
{
    openWith({job(u"a"_s, u"A"_s, u"analyzing"_s)});
    m_app->renameRow(u"a"_s);
    EXPECT_EQ(sheet(), nullptr);
}

TEST_F(RowCommands, ARenameThatFailsIsTold)
{
    m_engine.answer(u"rename"_s, Answer::failure(1, "Error: The title is taken\n"));
    openWith({call(u"a"_s, u"A"_s)});
    choose(u"a"_s, u"renameRow"_s);
    sheet()->findChild<QLineEdit *>()->setText(u"B"_s);
    answer(0);
    ASSERT_TRUE(sheetSays(u"Could not rename"_s));
    EXPECT_EQ(sheet()->text().detail, u"The title is taken"_s);
}

TEST_F(RowCommands, ARenameClosesTheWindowsOfItsTranscript)
{
    m_engine.answerCall(u"rename"_s, 1, Answer::failure(1, "Error: The title is taken\n"));
    openWith({call(u"a"_s, u"A"_s), call(u"b"_s, u"B"_s)});
    choose(u"a"_s, u"openRowText"_s);
    choose(u"b"_s, u"openRowText"_s);
    ASSERT_EQ(shownTranscripts(), (QStringList{u"A"_s, u"B"_s}));
    for (const QStringList &left : {QStringList{u"A"_s, u"B"_s}, QStringList{u"B"_s}}) {
        activate();
        choose(u"a"_s, u"renameRow"_s);
        sheet()->findChild<QLineEdit *>()->setText(u"C"_s);
        answer(0);
        if (left.size() == 2) {
            ASSERT_TRUE(sheetSays(u"Could not rename"_s));
            answer(0);
        }
        EXPECT_TRUE(waitFor([&] { return shownTranscripts() == left; })) << left.size();
    }
}

TEST_F(RowCommands, ARowThatGoesUnderItsSheetIsTheEnginesToJudge)
{
    m_engine.answer(u"rename"_s, Answer::failure(1, "Error: No such job"));
    openWith({call(u"a"_s, u"A"_s)});
    choose(u"a"_s, u"renameRow"_s);
    show({});
    ASSERT_NE(sheet(), nullptr);
    sheet()->findChild<QLineEdit *>()->setText(u"B"_s);
    answer(0);
    EXPECT_TRUE(called(u"rename"_s, {{u"rename"_s, u"a"_s, u"--"_s, u"B"_s}}));
    EXPECT_TRUE(sheetSays(u"Could not rename"_s));
}

// Pause, Resume, Try Again, Cancel

TEST_F(RowCommands, APauseIsSeenThoughAnOlderPollIsOnItsWay)
{
    openWith({job(u"a"_s, u"A"_s, u"transcribing"_s)});
    ASSERT_TRUE(pollEnds());
    const int asked = m_engine.count(u"history"_s);
    m_engine.answerCall(u"history"_s, asked + 1,
                        Answer{test::historyOf({job(u"a"_s, u"A"_s, u"transcribing"_s)})}.heldAt("older"));
    m_engine.answerHistory(test::historyOf({job(u"a"_s, u"A"_s, u"transcribing"_s, true)}));
    m_app->poll();
    ASSERT_TRUE(waitFor([&] { return m_engine.count(u"history"_s) == asked + 1; }));
    click(rowButton(u"a"_s, u"pauseRow"_s));
    EXPECT_TRUE(rowSays(u"a"_s, u"Paused — Listening and writing down…"_s));
    // No newer one makes good what the older one spoils.
    ASSERT_TRUE(pollEnds());
    m_engine.answer(u"history"_s, Answer().heldAt("never"));
    ASSERT_TRUE(m_engine.letPass("older"));
    settle();
    settle();
    EXPECT_TRUE(rowSays(u"a"_s, u"Paused — Listening and writing down…"_s));
}

TEST_F(RowCommands, NothingIsResumedOrTriedAgainWhileAnotherFileIsWorkedOn)
{
    openWith({job(u"a"_s, u"A"_s, u"transcribing"_s), job(u"b"_s, u"B"_s, u"transcribing"_s, true),
              job(u"c"_s, u"C"_s, u"failed"_s)});
    click(rowButton(u"b"_s, u"resumeRow"_s));
    EXPECT_EQ(summary(), u"Tuppi is working on another file. Resume this one when it is done."_s);
    click(rowButton(u"c"_s, u"retryRow"_s));
    EXPECT_EQ(summary(), u"Tuppi is working on another file. Try again when it is done."_s);
    settle();
    EXPECT_EQ(m_engine.count(u"continue"_s) + m_engine.count(u"retry"_s), 0);
    EXPECT_EQ(sheet(), nullptr);
}

TEST_F(RowCommands, CancelAsksFirstAndKeepsGoingByDefault)
{
    openWith({job(u"a"_s, u"A"_s, u"transcribing"_s), QJsonObject{{u"id"_s, u"b"_s}, {u"status"_s, u"queued"_s}}});
    choose(u"b"_s, u"cancelRow"_s);
    EXPECT_EQ(sheet()->text().message, u"Cancel “this transcription”?"_s);
    answer(0);
    choose(u"a"_s, u"cancelRow"_s);
    EXPECT_EQ(sheet()->text().message, u"Cancel “A”?"_s);
    EXPECT_EQ(sheet()->text().detail,
              u"Processing stops now. Finished steps are kept, so you can press Start Again later."_s);
    EXPECT_EQ(sheetButtons(), (QStringList{u"Keep Going"_s, u"Cancel Transcription"_s}));
    EXPECT_EQ(defaultButton(), u"Keep Going"_s);
    EXPECT_EQ(sheetButton(1)->pill(), 2) << "marked as destructive";
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
        ASSERT_TRUE(waitFor([this] { return sheet() && sheet()->isActiveWindow(); }));
        press(key);
        ASSERT_TRUE(sheetCloses());
        activate();
        choose(u"a"_s, u"cancelRow"_s);
    }
    settle();
    EXPECT_EQ(m_engine.count(u"cancel"_s), 0);
    answer(1);
    EXPECT_TRUE(called(u"cancel"_s, {{u"cancel"_s, u"a"_s}}));
}

// Remove

TEST_F(RowCommands, RemoveFromListHidesAndLeavesTheFolder)
{
    openWith({call(u"a"_s, u"A"_s), call(u"b"_s, u"B"_s)});
    click(rowButton(u"b"_s, u"removeRow"_s));
    ASSERT_NE(sheet(), nullptr);
    EXPECT_EQ(sheet()->text().message, u"Remove “B”?"_s);
    EXPECT_TRUE(sheet()->text().detail.contains(u"stays in ~/Documents/CallsRawFiles ("_s));
    EXPECT_EQ(sheetButtons(), (QStringList{u"Remove from List"_s, u"Move to Trash"_s, u"Cancel"_s}));
    EXPECT_EQ(defaultButton(), u"Remove from List"_s);
    EXPECT_EQ(sheetButton(1)->pill(), 2) << "marked as destructive";
    answer(0);
    EXPECT_TRUE(called(u"hide"_s, {{u"hide"_s, u"b"_s}}));
    EXPECT_TRUE(QFileInfo::exists(library() + u"/B/call.md"_s));
    EXPECT_EQ(trashed(), QStringList());
}

TEST_F(RowCommands, EscapeAndCancelRemoveNothing)
{
    openWith({call(u"a"_s, u"A"_s)});
    click(rowButton(u"a"_s, u"removeRow"_s));
    answer(2);
    click(rowButton(u"a"_s, u"removeRow"_s));
    ASSERT_TRUE(waitFor([this] { return sheet() && sheet()->isActiveWindow(); }));
    press(Qt::Key_Escape);
    ASSERT_TRUE(sheetCloses());
    settle();
    EXPECT_EQ(m_engine.count(u"hide"_s), 0);
    EXPECT_TRUE(QFileInfo::exists(library() + u"/A/call.md"_s));
}

TEST_F(RowCommands, MoveToTrashOfOneAsksOnce)
{
    openWith({call(u"a"_s, u"A"_s), call(u"b"_s, u"B"_s)});
    ASSERT_FALSE(QFileInfo::exists(m_engine.home() + u"/.local"_s)) << "where moving to the trash loses data";
    const int histories = m_engine.count(u"history"_s);
    click(rowButton(u"a"_s, u"removeRow"_s));
    answer(1);
    ASSERT_TRUE(waitFor([this] { return trashed() == QStringList{u"A"_s}; }));
    EXPECT_TRUE(waitFor([&] { return m_engine.count(u"history"_s) > histories; })) << "the list is asked for anew";
    EXPECT_EQ(test::readFile(trash() + u"/files/A/call.md"_s), "text");
    EXPECT_TRUE(test::readFile(trash() + u"/info/A.trashinfo"_s).contains("/Documents/CallsRawFiles/A"));
    EXPECT_FALSE(QFileInfo::exists(library() + u"/A"_s));
    EXPECT_TRUE(QFileInfo::exists(library() + u"/B"_s));
    EXPECT_EQ(m_engine.count(u"hide"_s), 0) << "the engine is not told";
    EXPECT_EQ(sheet(), nullptr);
}

TEST_F(RowCommands, MoveToTrashClosesTheWindowsOfItsTranscript)
{
    openWith({call(u"a"_s, u"A"_s), call(u"b"_s, u"B"_s)});
    choose(u"a"_s, u"openRowText"_s);
    choose(u"b"_s, u"openRowText"_s);
    activate();
    click(rowButton(u"a"_s, u"removeRow"_s));
    answer(1);
    EXPECT_TRUE(waitFor([this] { return shownTranscripts() == QStringList{u"B"_s}; }));
}

TEST_F(RowCommands, MoveToTrashOfTwoAsksTwice)
{
    openWith({call(u"a"_s, u"A"_s), call(u"b"_s, u"B"_s)});
    chooseInMenuBar(u"clearList"_s);
    EXPECT_EQ(sheet()->text().message, u"Clear all 2 finished transcripts from the list?"_s);
    click(sheetButton(1));
    ASSERT_TRUE(sheetSays(u"Move 2 transcript folders to the Trash?"_s));
    EXPECT_EQ(sheet()->text().detail, u"You can restore them from the Trash until you empty it."_s);
    EXPECT_EQ(sheetButtons(), (QStringList{u"Keep"_s, u"Move to Trash"_s}));
    EXPECT_EQ(defaultButton(), u"Keep"_s);
    EXPECT_EQ(sheetButton(1)->pill(), 2) << "marked as destructive";
    answer(0);
    EXPECT_EQ(trashed(), QStringList());

    chooseInMenuBar(u"clearList"_s);
    click(sheetButton(1));
    ASSERT_TRUE(sheetSays(u"Move 2 transcript folders to the Trash?"_s));
    answer(1);
    EXPECT_TRUE(waitFor([this] { return trashed() == (QStringList{u"A"_s, u"B"_s}); }));
}

TEST_F(RowCommands, FoldersThatStayAreNamedTogether)
{
    QJsonObject home = job(u"h"_s, u"Home"_s, u"ready"_s);
    home.insert(u"call_dir"_s, m_engine.home());
    QJsonObject around = job(u"l"_s, u"All"_s, u"ready"_s);
    around.insert(u"call_dir"_s, library());
    QJsonObject untitled{{u"id"_s, u"u"_s}, {u"status"_s, u"ready"_s}, {u"call_dir"_s, u"/gone/2025"_s}};
    openWith({home, around, untitled, job(u"g"_s, u"Gone"_s, u"failed"_s), call(u"a"_s, u"A"_s),
              QJsonObject{{u"id"_s, u"n"_s}, {u"status"_s, u"failed"_s}}});
    click(window()->findChild<QWidget *>(u"clearButton"_s));
    EXPECT_EQ(sheet()->text().message, u"Clear all 6 finished transcripts from the list?"_s);
    click(sheetButton(1));
    ASSERT_TRUE(sheetSays(u"Move 6 transcript folders to the Trash?"_s));
    click(sheetButton(1));
    ASSERT_TRUE(sheetSays(u"Some folders could not be moved to the Trash"_s));
    EXPECT_EQ(sheet()->text().detail, u"Home: This is not the folder of a transcript.\n"
                                      u"All: This is not the folder of a transcript.\n"
                                      u"2025: It is no longer there.\n"
                                      u"Gone: It is no longer there."_s);
    EXPECT_EQ(sheetButtons(), QStringList{u"OK"_s});
    EXPECT_EQ(trashed(), QStringList{u"A"_s});
    EXPECT_TRUE(QFileInfo::exists(m_engine.home()));
}

TEST_F(RowCommands, ALongListOfFoldersThatStayLeavesTheSheetOnTheScreen)
{
    QList<QJsonObject> jobs;
    for (int index = 0; index < 300; ++index)
        jobs.append(job(u"g%1"_s.arg(index), u"Gone %1"_s.arg(index), u"failed"_s));
    openWith(jobs);
    click(window()->findChild<QWidget *>(u"clearButton"_s));
    click(sheetButton(1));
    ASSERT_TRUE(sheetSays(u"Move 300 transcript folders to the Trash?"_s));
    click(sheetButton(1));
    ASSERT_TRUE(sheetSays(u"Some folders could not be moved to the Trash"_s));
    const QRect screen = sheet()->screen()->availableGeometry();
    ASSERT_TRUE(waitFor([&] { return screen.contains(sheet()->frameGeometry()); })) << sheet()->frameGeometry().height();
    EXPECT_TRUE(screen.contains(QRect(sheetButton(0)->mapToGlobal(QPoint()), sheetButton(0)->size())));
    EXPECT_EQ(defaultButton(), u"OK"_s);

    // All of it can be reached, by the keyboard too.
    auto *scroll = sheet()->findChild<QScrollArea *>(u"sheetScroll"_s);
    ASSERT_NE(scroll, nullptr);
    EXPECT_EQ(sheet()->text().detail.count(u'\n'), 299);
    ASSERT_TRUE(waitFor([this] { return sheet()->isActiveWindow(); }));
    ASSERT_TRUE(test::tabTo(u"sheetScroll"_s));
    for (int page = 0; page < 100; ++page)
        press(Qt::Key_PageDown);
    EXPECT_GT(scroll->verticalScrollBar()->maximum(), 0);
    EXPECT_EQ(scroll->verticalScrollBar()->value(), scroll->verticalScrollBar()->maximum());
    press(Qt::Key_Escape);
    EXPECT_TRUE(sheetCloses());
}

TEST_F(RowCommands, AShortMessageDoesNotScroll)
{
    openWith({call(u"a"_s, u"A"_s)});
    click(rowButton(u"a"_s, u"removeRow"_s));
    ASSERT_NE(sheet(), nullptr);
    EXPECT_EQ(sheet()->findChild<QScrollArea *>(), nullptr);
}

TEST_F(RowCommands, AFolderOnADriveWithoutATrashStays)
{
    const QString place = m_engine.home() + u"/drive"_s;
    const test::Drive drive(place, 64);
    if (!drive.isMounted())
        GTEST_SKIP() << "only an administrator can mount a drive";
    QJsonObject entry = job(u"a"_s, u"A"_s, u"ready"_s);
    entry.insert(u"call_dir"_s, QString(place + u"/A"_s));
    QDir().mkpath(place + u"/A"_s);
    test::writeFile(place + u"/A/call.md"_s, "text");
    test::writeFile(place + u"/.Trash-%1"_s.arg(::getuid()), "in the way");
    openWith({entry});
    click(rowButton(u"a"_s, u"removeRow"_s));
    click(sheetButton(1));
    ASSERT_TRUE(sheetSays(u"Some folders could not be moved to the Trash"_s));
    EXPECT_EQ(sheet()->text().detail, u"A: The drive it is on has no Trash."_s);
    EXPECT_EQ(test::readFile(place + u"/A/call.md"_s), "text");
}

TEST_F(RowCommands, WaitingAndWorkingRowsAreNotRemoved)
{
    openWith({job(u"a"_s, u"A"_s, u"transcribing"_s)});
    const QString file = m_engine.recording(u"talk.wav"_s);
    m_app->enqueue({file}, m_choices);
    test::tabTo(u"table"_s);
    for (const int index : {0, 1}) {
        list()->selectRow(index);
        press(Qt::Key_Delete);
        press(Qt::Key_Backspace);
        EXPECT_EQ(sheet(), nullptr);
    }
    chooseInMenuBar(u"clearList"_s);
    EXPECT_EQ(sheet(), nullptr);
    EXPECT_EQ(summary(), u"Nothing to clear"_s);
    EXPECT_EQ(list()->content().size(), 2);
}

TEST_F(RowCommands, ClearListOfOneSaysSoAndHidesThemInListOrder)
{
    openWith({job(u"w"_s, u"W"_s, u"queued"_s), call(u"a"_s, u"A"_s)});
    click(window()->findChild<QWidget *>(u"clearButton"_s));
    EXPECT_EQ(sheet()->text().message, u"Clear 1 finished transcript from the list?"_s);
    answer(2);
    show({job(u"x"_s, u"X"_s, u"failed"_s), call(u"a"_s, u"A"_s), job(u"w"_s, u"W"_s, u"queued"_s),
          job(u"y"_s, u"Y"_s, u"cancelled"_s), job(u"z"_s, u"Z"_s, u"elsewhere"_s)});
    chooseInMenuBar(u"clearList"_s);
    answer(0);
    EXPECT_TRUE(called(u"hide"_s, {{u"hide"_s, u"x"_s, u"a"_s, u"y"_s, u"z"_s}}));
}

TEST_F(RowCommands, RowsWhoseIdIsNoTextAreLeftOutOfHide)
{
    openWith({});
    m_app->removeCalls({}, u"Nothing"_s);
    EXPECT_EQ(sheet(), nullptr);
    const QJsonObject nameless{{u"id"_s, 0}, {u"title"_s, u"N"_s}};
    m_app->removeCalls(ArrangeHistory({nameless, job(u"a"_s, u"A"_s, u"ready"_s)}).entries, u"Remove"_s);
    answer(0);
    EXPECT_TRUE(called(u"hide"_s, {{u"hide"_s, u"a"_s}}));
    m_app->removeCalls(ArrangeHistory({nameless}).entries, u"Remove"_s);
    answer(0);
    EXPECT_TRUE(called(u"hide"_s, {{u"hide"_s, u"a"_s}, {u"hide"_s}}));
}

TEST_F(RowCommands, AFailedRemovalIsTold)
{
    m_engine.answer(u"hide"_s, Answer::failure(3, "warning\nПомилка: база зайнята\n"));
    openWith({call(u"a"_s, u"A"_s)});
    click(rowButton(u"a"_s, u"removeRow"_s));
    click(sheetButton(0));
    ASSERT_TRUE(sheetSays(u"Could not remove from the list"_s));
    EXPECT_EQ(sheet()->text().detail, u"база зайнята"_s);
}

TEST_F(RowCommands, ShowHiddenAsksTheEngineAndTheListFollows)
{
    m_engine.answer(u"hide"_s, Answer::failure(1, "Error: nothing was hidden"));
    openWith({});
    m_engine.answerHistory(test::historyOf({call(u"a"_s, u"A"_s)}));
    chooseInMenuBar(u"showHidden"_s);
    EXPECT_TRUE(waitFor([this] { return row(u"a"_s) != nullptr; }));
    EXPECT_EQ(m_engine.calls(u"hide"_s), (Calls{{u"hide"_s, u"--all"_s, u"--undo"_s}}));
    EXPECT_EQ(sheet(), nullptr) << "a failure is not shown";
}

// Whatever the engine and the person do

TEST_F(RowCommands, OfADeadEngineEveryFailureIsTold)
{
    struct
    {
        QString subcommand;
        QString key;
        QString action;
        QString title;
    } const commands[]{{u"pause"_s, u"w"_s, u"pauseRow"_s, u"Could not pause"_s},
                       {u"continue"_s, u"p"_s, u"resumeRow"_s, u"Could not resume"_s},
                       {u"retry"_s, u"f"_s, u"retryRow"_s, u"Could not start again"_s},
                       {u"cancel"_s, u"w"_s, u"cancelRow"_s, u"Could not cancel"_s}};
    for (const auto &given : commands) {
        m_engine.answer(given.subcommand, Answer::script("printf '\\xff\\xfe{' >&2; kill -9 $$"));
        QList<QJsonObject> jobs{job(u"f"_s, u"F"_s, u"failed"_s)};
        if (given.key == "w"_L1)
            jobs.append(job(u"w"_s, u"W"_s, u"transcribing"_s));
        if (given.key == "p"_L1)
            jobs.append(job(u"p"_s, u"P"_s, u"transcribing"_s, true));
        m_app ? show(jobs) : openWith(jobs);
        choose(given.key, given.action);
        if (given.action == "cancelRow"_L1)
            click(sheetButton(1));
        EXPECT_TRUE(sheetSays(given.title)) << qPrintable(given.title);
        EXPECT_EQ(sheet()->text().detail, QString());
        answer(0);
    }
}

TEST_F(RowCommands, TwoClicksOnAButtonOpenOneSheet)
{
    openWith({call(u"a"_s, u"A"_s)});
    QPushButton *button = rowButton(u"a"_s, u"removeRow"_s);
    QTest::mouseDClick(button, Qt::LeftButton);
    QTest::mouseClick(window()->windowHandle(), Qt::LeftButton, {}, button->mapTo(window(), button->rect().center()));
    EXPECT_EQ(window()->findChildren<Sheet *>().size(), 1);
    answer(0);
    EXPECT_TRUE(called(u"hide"_s, {{u"hide"_s, u"a"_s}}));
}

TEST_F(RowCommands, ASheetAnsweredTwiceIsAnsweredOnce)
{
    openWith({call(u"a"_s, u"A"_s)});
    click(rowButton(u"a"_s, u"removeRow"_s));
    QPointer<Sheet> asked = sheet();
    asked->answer(0);
    asked->answer(1);
    ASSERT_TRUE(sheetCloses());
    EXPECT_TRUE(called(u"hide"_s, {{u"hide"_s, u"a"_s}}));
    settle();
    EXPECT_EQ(trashed(), QStringList());
}

TEST_F(RowCommands, TheApplicationMayEndUnderASheetAndWithACommandUnderWay)
{
    openWith({call(u"a"_s, u"A"_s)});
    m_engine.answer(u"rename"_s, Answer{}.heldAt("renamed"));
    choose(u"a"_s, u"renameRow"_s);
    sheet()->findChild<QLineEdit *>()->setText(u"B"_s);
    answer(0);
    ASSERT_TRUE(waitFor([this] { return m_engine.count(u"rename"_s) == 1; }));
    click(rowButton(u"a"_s, u"removeRow"_s));
    QPointer<Sheet> asked = sheet();
    ASSERT_TRUE(asked);
    destroy();
    EXPECT_FALSE(asked);
    m_engine.openGate("renamed");
}

TEST_F(RowCommands, TheWindowMayCloseUnderASheet)
{
    openWith({call(u"a"_s, u"A"_s)});
    click(rowButton(u"a"_s, u"removeRow"_s));
    window()->close();
    ASSERT_NE(sheet(), nullptr);
    sheet()->answer(0);
    EXPECT_TRUE(called(u"hide"_s, {{u"hide"_s, u"a"_s}}));
    m_app->applicationShouldHandleReopen({});
    EXPECT_TRUE(window()->isVisible());
}

// Keyboard

TEST_F(RowCommands, ShiftF10OpensTheMenuOfTheSelectedRow)
{
    openWith({call(u"a"_s, u"A"_s), job(u"b"_s, u"B"_s, u"failed"_s)});
    test::tabTo(u"table"_s);
    list()->selectRow(1);
    press(Qt::Key_F10, Qt::ShiftModifier);
    auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    EXPECT_TRUE(menu->findChild<QAction *>(u"retryRow"_s)->isEnabled());
    menu->close();
    rowButton(u"a"_s, u"copyRowText"_s)->setFocus(Qt::TabFocusReason);
    QTest::keyClick(window()->windowHandle(), Qt::Key_F10, Qt::ShiftModifier);
    menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    EXPECT_FALSE(menu->findChild<QAction *>(u"retryRow"_s)->isEnabled()) << "of the row that has the keyboard";
    menu->close();
}

TEST_F(RowCommands, KeysOnARowsButtonAreForThatRow)
{
    openWith({call(u"a"_s, u"A"_s), call(u"b"_s, u"B"_s)});
    list()->selectRow(1);
    rowButton(u"a"_s, u"copyRowText"_s)->setFocus(Qt::TabFocusReason);
    press(Qt::Key_Return);
    EXPECT_TRUE(called(u"copy"_s, {{u"copy"_s, u"transcript"_s, u"a"_s}}));
    press(Qt::Key_Delete);
    ASSERT_NE(sheet(), nullptr);
    EXPECT_EQ(sheet()->text().message, u"Remove “A”?"_s);
}

TEST_F(RowCommands, ARowThatWentUnderItsMenuIsLeftAlone)
{
    openWith({call(u"a"_s, u"A"_s), call(u"b"_s, u"B"_s)});
    list()->selectRow(1);
    for (const MenuItem &item : RowMenu()) {
        show({call(u"a"_s, u"A"_s), call(u"b"_s, u"B"_s)});
        click(row(u"a"_s)->title(), Qt::RightButton);
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr);
        show({call(u"b"_s, u"B"_s)});
        menu->findChild<QAction *>(item.action)->trigger();
        menu->close();
        EXPECT_EQ(sheet(), nullptr) << qPrintable(item.action);
    }
    settle();
    for (const QString &subcommand : {u"copy"_s, u"rename"_s, u"retry"_s, u"pause"_s, u"continue"_s, u"cancel"_s, u"hide"_s})
        EXPECT_EQ(m_engine.count(subcommand), 0) << qPrintable(subcommand);
}

} // namespace
