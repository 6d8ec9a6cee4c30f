// The General, Transcription, Storage and Engine panes, the windows about the program, and the keyboard.

#include "settings/SettingsTest.h"

#include "settings/AboutWindow.h"
#include "settings/AcknowledgementsWindow.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QTextBrowser>

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::Answer;
using test::click;
using test::focusName;
using test::press;
using test::readFile;
using test::tabTo;
using test::waitFor;
using test::writeFile;

namespace {

/// Takes what the desktop would be asked to open.
class Opened : public QObject
{
    Q_OBJECT
public:
    Opened()
    {
        for (const QString &scheme : {u"https"_s, u"file"_s})
            QDesktopServices::setUrlHandler(scheme, this, "take");
    }
    ~Opened() override
    {
        for (const QString &scheme : {u"https"_s, u"file"_s})
            QDesktopServices::unsetUrlHandler(scheme);
    }
    QList<QUrl> urls;

public Q_SLOTS:
    void take(const QUrl &url) { urls.append(url); }
};

class Panes : public test::SettingsTest
{
protected:
    void store(const QByteArray &json)
    {
        QDir().mkpath(QFileInfo(settingsPath()).path());
        writeFile(settingsPath(), json);
    }
    bool isOn(const QString &key) const { return part<TickBox>(key)->isChecked(); }
    QString chosen(const QString &key) const { return menu(key)->currentData().toString(); }
    QPushButton *button(const QString &name) const { return part<QPushButton>(name); }
    QStringList healthLines() const
    {
        QStringList lines;
        for (const ElidedLabel *line : settingsWindow()->findChildren<ElidedLabel *>(u"healthLine"_s))
            lines.append(line->text() + u'|' + line->colour().name());
        return lines;
    }
};

TEST_F(Panes, AnEmptyStoreShowsTheDefaults)
{
    openSettings();
    EXPECT_EQ(chosen(u"AppleLanguages"_s), u"auto"_s);
    EXPECT_EQ(chosen(u"engine"_s), u"auto"_s);
    EXPECT_EQ(chosen(u"language"_s), u"en"_s);
    EXPECT_TRUE(isOn(u"speakers"_s) && isOn(u"notify"_s) && isOn(u"sounds"_s));
    EXPECT_FALSE(isOn(u"quickMode"_s));
    EXPECT_EQ(itemsOf(u"language"_s).size(), 29);
    EXPECT_EQ(menu(u"language"_s)->findData(u"ru"_s), -1);
}

TEST_F(Panes, AStoredNoIsNotTakenForAbsent)
{
    store(R"({"notify":false,"sounds":false,"speakers":false,"quickMode":true,"language":"uk","AppleLanguages":["hi"]})");
    openSettings();
    EXPECT_FALSE(isOn(u"speakers"_s) || isOn(u"notify"_s) || isOn(u"sounds"_s));
    EXPECT_TRUE(isOn(u"quickMode"_s));
    EXPECT_EQ(chosen(u"language"_s), u"uk"_s);
    EXPECT_EQ(chosen(u"AppleLanguages"_s), u"hi"_s);
}

TEST_F(Panes, AStoredValueThatIsNotOfferedShowsTheFirstAndStays)
{
    store(R"({"language":"tlh","AppleLanguages":["fr"]})");
    openTab(test::Transcription);
    EXPECT_EQ(chosen(u"language"_s), u"auto"_s);
    EXPECT_EQ(chosen(u"AppleLanguages"_s), u"auto"_s);
    EXPECT_EQ(settings()[u"language"_s].toString(), u"tlh"_s);
    EXPECT_EQ(settings()[u"AppleLanguages"_s].toArray(), QJsonArray{u"fr"_s});
    choose(u"language"_s, u"pl"_s);
    EXPECT_EQ(settings()[u"language"_s].toString(), u"pl"_s);
}

TEST_F(Panes, TheFirstThatIsShownForAValueNotOfferedCanBeChosen)
{
    store(R"({"engine":"custom:gone","language":"tlh","AppleLanguages":["fr"]})");
    m_engine.answer(u"models"_s, Answer::failure(1, "Error: busy\n"));
    openTab(test::Transcription);
    for (const QString &key : {u"engine"_s, u"language"_s}) {
        choose(key, u"auto"_s);
        EXPECT_EQ(settings()[key].toString(), u"auto"_s);
    }
    settingsWindow()->showTab(test::General);
    choose(u"AppleLanguages"_s, u"auto"_s);
    EXPECT_TRUE(settingsSheetOpens());
    EXPECT_FALSE(settings().contains(u"AppleLanguages"_s));
}

TEST_F(Panes, GarbledValuesShowTheFirst)
{
    store(R"({"engine":["whisper"],"language":{"a":1},"AppleLanguages":"uk"})");
    openSettings();
    EXPECT_EQ(chosen(u"engine"_s), u"auto"_s);
    EXPECT_EQ(chosen(u"language"_s), u"auto"_s);
    EXPECT_EQ(chosen(u"AppleLanguages"_s), u"auto"_s);
}

TEST_F(Panes, EveryControlWritesItsKeyAtOnce)
{
    openSettings();
    for (const QString &key : {u"notify"_s, u"sounds"_s}) {
        click(part<TickBox>(key));
        EXPECT_EQ(settings()[key], QJsonValue(false));
    }
    EXPECT_EQ(window()->findChild<IconButton *>(u"soundButton"_s)->symbol(), u"speaker.slash.fill"_s);
    settingsWindow()->showTab(test::Transcription);
    click(part<TickBox>(u"quickMode"_s));
    EXPECT_EQ(settings()[u"quickMode"_s], QJsonValue(true));
    click(part<TickBox>(u"quickMode"_s));
    EXPECT_EQ(settings()[u"quickMode"_s], QJsonValue(false));
    choose(u"engine"_s, u"whisper-large"_s);
    EXPECT_EQ(settings()[u"engine"_s].toString(), u"whisper-large"_s);
}

TEST_F(Panes, RussianSetInAnotherWayIsConfirmed)
{
    openTab(test::Transcription);
    m_app->settingPopupChanged(u"language"_s, u"ru"_s);
    ASSERT_TRUE(settingsSheetOpens());
    settingsSheet()->answer(1);
    EXPECT_FALSE(m_defaults->contains(u"language"_s));
    EXPECT_EQ(chosen(u"language"_s), u"en"_s);
    ASSERT_TRUE(settingsSheetCloses());
    m_app->settingPopupChanged(u"language"_s, u"ru"_s);
    ASSERT_TRUE(settingsSheetOpens());
    settingsSheet()->answer(0);
    EXPECT_EQ(m_defaults->text(u"language"_s), u"ru"_s);
}

TEST_F(Panes, ALanguageIsStoredBeforeTheAnswerAndLaterRestartsNothing)
{
    openSettings();
    choose(u"AppleLanguages"_s, u"es"_s);
    ASSERT_TRUE(settingsSheetOpens());
    EXPECT_EQ(settings()[u"AppleLanguages"_s].toArray(), QJsonArray{u"es"_s});
    EXPECT_EQ(sheetSays(), u"Restart Tuppi Transcriber to switch the language?|Transcriptions in progress keep running "
                            "while the app restarts.|Restart Now|Later"_s);
    ASSERT_TRUE(settingsSheetOpens());
    press(Qt::Key_Escape);
    ASSERT_TRUE(settingsSheetCloses());
    EXPECT_FALSE(m_app->viewer().relaunches);

    choose(u"AppleLanguages"_s, u"auto"_s);
    ASSERT_TRUE(settingsSheetOpens());
    EXPECT_FALSE(settings().contains(u"AppleLanguages"_s));
    press(Qt::Key_Return);
    EXPECT_TRUE(waitFor([this] { return m_app->viewer().relaunches; }));
}

TEST_F(Panes, AfterLaterNothingChangesButTheChoice)
{
    store(R"({"AppleLanguages":["uk"]})");
    openSettings();
    const auto chooseAndWait = [this](const QString &code) {
        choose(u"AppleLanguages"_s, code);
        ASSERT_TRUE(settingsSheetOpens());
        settingsSheet()->answer(1);
        ASSERT_TRUE(settingsSheetCloses());
    };
    ASSERT_NO_FATAL_FAILURE(chooseAndWait(u"es"_s));
    EXPECT_EQ(settingsWindow()->windowTitle(), u"Settings"_s);
    m_app->clearList();
    EXPECT_EQ(summary(), u"Nothing to clear"_s) << "texts looked up afterwards are in the old language";
    ASSERT_NO_FATAL_FAILURE(chooseAndWait(u"auto"_s));
    destroy();
    openSettings();
    EXPECT_EQ(menu(u"AppleLanguages"_s)->currentText(), u"Automatic (same as the Mac)"_s);
}

TEST_F(Panes, AfterLaterTheSameLanguageOffersTheRestartAgain)
{
    openSettings();
    for (int time = 0; time < 2; ++time) {
        choose(u"AppleLanguages"_s, u"es"_s);
        ASSERT_TRUE(settingsSheetOpens());
        settingsSheet()->answer(1);
        ASSERT_TRUE(settingsSheetCloses());
    }
}

TEST_F(Panes, AChosenModelStaysStoredWhileTheModelsAreNotKnown)
{
    store(R"({"engine":"custom:mine"})");
    m_engine.answer(u"models"_s, Answer::failure(1, "Error: busy\n"));
    openTab(test::Transcription);
    settle();
    EXPECT_EQ(chosen(u"engine"_s), u"auto"_s);
    EXPECT_EQ(settings()[u"engine"_s].toString(), u"custom:mine"_s);
    choose(u"engine"_s, u"whisper"_s);
    EXPECT_EQ(settings()[u"engine"_s].toString(), u"whisper"_s);
}

TEST_F(Panes, TheButtonsOfTheGeneralPane)
{
    openSettings();
    QStringList commands;
    QObject::connect(settingsWindow(), &SettingsWindow::command, m_app.get(),
                     [&](const QString &name) { commands.append(name); });
    click(button(u"showHidden"_s));
    click(button(u"showAcknowledgements"_s));
    EXPECT_EQ(commands, (QStringList{u"showHidden"_s, u"showAcknowledgements"_s}));
}

TEST_F(Panes, EveryShowingAsksTheEngineAfresh)
{
    openSettings();
    const auto asked = [this](int times, int models) {
        return waitFor([&] {
            return m_engine.count(u"doctor"_s) == times && m_engine.count(u"settings"_s) == times
                && m_engine.count(u"models"_s) == models;
        });
    };
    ASSERT_TRUE(asked(1, 2)) << "of the models the main window has asked too";
    settingsWindow()->close();
    m_app->showSettings();
    EXPECT_TRUE(settingsWindow()->isVisible());
    EXPECT_TRUE(asked(2, 3));
    EXPECT_EQ(m_engine.calls(u"settings"_s).last(), (QStringList{u"settings"_s, u"--json"_s}));
    EXPECT_EQ(m_engine.calls(u"doctor"_s).last(), (QStringList{u"doctor"_s, u"--json"_s}));
}

// Storage

TEST_F(Panes, TheLibraryWithItsSize)
{
    const QString library = m_engine.home() + u"/Calls"_s;
    QDir().mkpath(library);
    writeFile(library + u"/big"_s, QByteArray(3'000'000, 'x'));
    m_engine.answer(u"settings"_s, {R"({"library":")" + library.toUtf8() + R"("})"});
    openTab(test::Storage);
    EXPECT_EQ(text(u"librarySize"_s), u"Calculating…"_s);
    EXPECT_TRUE(waitFor([&] { return part<PathField>(u"libraryPath"_s)->path() == u"~/Calls"_s; }));
    EXPECT_EQ(part<PathField>(u"libraryPath"_s)->toolTip(), library);
    EXPECT_TRUE(says(u"librarySize"_s, u"3 MB"_s));
    EXPECT_EQ(jobs().library, library);
}

TEST_F(Panes, AnotherLibraryIsShownWhileTheOldOneHasTheKeyboard)
{
    m_engine.answer(u"settings"_s, {R"({"library":"/old"})"});
    openTab(test::Storage);
    auto *field = part<PathField>(u"libraryPath"_s);
    ASSERT_TRUE(waitFor([&] { return field->text() == u"/old"_s; }));
    ASSERT_TRUE(tabTo(u"libraryPath"_s));
    m_engine.answer(u"settings"_s, {R"({"library":"/newer"})"});
    m_app->refreshLibrary();
    EXPECT_TRUE(waitFor([&] { return field->path() == u"/newer"_s; }));
    EXPECT_EQ(field->text(), u"/newer"_s);

    field->selectAll();
    m_app->refreshLibrary();
    EXPECT_TRUE(waitFor([&] { return m_engine.count(u"settings"_s) == 3; }));
    settle();
    EXPECT_EQ(field->selectedText(), u"/newer"_s) << "the same again leaves what is selected";
}

TEST_F(Panes, TheSizeStaysWhileItIsMeasuredAnew)
{
    const QString library = m_engine.home() + u"/Calls"_s;
    QDir().mkpath(library);
    writeFile(library + u"/big"_s, QByteArray(3'000'000, 'x'));
    m_engine.answer(u"settings"_s, {R"({"library":")" + library.toUtf8() + R"("})"});
    openTab(test::Storage);
    ASSERT_TRUE(says(u"librarySize"_s, u"3 MB"_s));
    QStringList shown;
    writeFile(library + u"/bigger"_s, QByteArray(7'000'000, 'x'));
    m_app->refreshLibrary();
    EXPECT_TRUE(waitFor([&] {
        shown.append(text(u"librarySize"_s));
        return shown.last() == u"10 MB"_s;
    }));
    shown.removeDuplicates();
    EXPECT_EQ(shown, (QStringList{u"3 MB"_s, u"10 MB"_s}));
}

TEST_F(Panes, ALibraryThatIsGoneIsEmpty)
{
    m_engine.answer(u"settings"_s, {R"({"library":"/nowhere/at all"})"});
    openTab(test::Storage);
    EXPECT_TRUE(says(u"librarySize"_s, u"Empty"_s));
    EXPECT_EQ(part<PathField>(u"libraryPath"_s)->path(), u"/nowhere/at all"_s);
}

TEST_F(Panes, ALibraryThatIsAFileIsMeasured)
{
    const QString file = m_engine.recording(u"not a folder"_s);
    writeFile(file, QByteArray(40'000, 'x'));
    m_engine.answer(u"settings"_s, {R"({"library":")" + file.toUtf8() + R"("})"});
    openTab(test::Storage);
    EXPECT_TRUE(waitFor([this] { return text(u"librarySize"_s).endsWith(u" kB"_s); }));
}

TEST_F(Panes, AGarbledSettingsReplyLeavesThePaneAlone)
{
    for (const QByteArray reply : {"", "null", "[]", R"({"library":null})", R"({"library":7})", "\xff\xfe", "{"}) {
        SCOPED_TRACE(reply.constData());
        m_engine.answer(u"settings"_s, {reply});
        if (!m_app)
            openTab(test::Storage);
        else
            m_app->refreshLibrary();
        settle();
        EXPECT_EQ(part<PathField>(u"libraryPath"_s)->path(), u"…"_s);
        EXPECT_EQ(text(u"librarySize"_s), u"Calculating…"_s);
    }
}

TEST_F(Panes, AnotherFolderIsHandedToTheEngine)
{
    const QString folder = m_engine.home() + u"/New place"_s;
    QDir().mkpath(folder);
    openTab(test::Storage);
    click(button(u"changeLibrary"_s));
    auto *dialog = settingsWindow()->findChild<QFileDialog *>(u"chooseFolder"_s);
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->fileMode(), QFileDialog::Directory);
    EXPECT_EQ(dialog->labelText(QFileDialog::Accept), u"Use This Folder"_s);
    const int polls = m_engine.count(u"history"_s);
    ASSERT_TRUE(pollEnds());
    dialog->setDirectory(folder);
    QMetaObject::invokeMethod(dialog, "accept");
    ASSERT_TRUE(waitFor([this] { return m_engine.count(u"settings"_s) == 3; }));
    EXPECT_EQ(m_engine.calls(u"settings"_s).at(1), (QStringList{u"settings"_s, u"--library="_s + folder, u"--json"_s}));
    EXPECT_TRUE(waitFor([&] { return m_engine.count(u"history"_s) > polls; }));
    EXPECT_EQ(settingsSheet(), nullptr);
}

TEST_F(Panes, AnOlderPollDoesNotBringTheOldFolderBack)
{
    m_engine.answerStatus(R"({"library":"/old"})");
    openTab(test::Storage);
    ASSERT_TRUE(pollEnds());
    click(button(u"changeLibrary"_s));
    auto *dialog = settingsWindow()->findChild<QFileDialog *>(u"chooseFolder"_s);
    ASSERT_NE(dialog, nullptr);
    const int asked = m_engine.count(u"status"_s);
    m_engine.answerCall(u"status"_s, asked + 1, Answer{R"({"library":"/old"})"}.heldAt("older"));
    m_app->poll();
    ASSERT_TRUE(waitFor([&] { return m_engine.count(u"status"_s) == asked + 1; }));
    m_engine.answer(u"settings"_s, {R"({"library":"/new"})"});
    m_engine.answerStatus(R"({"library":"/new"})");
    dialog->selectFile(m_engine.home());
    QMetaObject::invokeMethod(dialog, "accept");
    ASSERT_TRUE(waitFor([&] { return m_engine.count(u"status"_s) == asked + 2; }));
    ASSERT_TRUE(waitFor([&] { return jobs().library == u"/new"_s; }));
    ASSERT_TRUE(m_engine.letPass("older"));
    settle();
    settle();
    ASSERT_TRUE(pollEnds());
    EXPECT_EQ(jobs().library, u"/new"_s);
}

TEST_F(Panes, ARefusedFolderIsReportedAsItStands)
{
    openTab(test::Storage);
    m_engine.answerTo(u"settings"_s, u"--library"_s, Answer::failure(1, "Error: not there\nPaused\n"));
    click(button(u"changeLibrary"_s));
    auto *dialog = settingsWindow()->findChild<QFileDialog *>(u"chooseFolder"_s);
    ASSERT_NE(dialog, nullptr);
    dialog->selectFile(m_engine.home());
    QMetaObject::invokeMethod(dialog, "accept");
    ASSERT_TRUE(settingsSheetOpens());
    EXPECT_EQ(sheetSays(), u"Could not use this folder|not there\nPaused\n|OK"_s);
    EXPECT_TRUE(waitFor([this] { return m_engine.count(u"settings"_s) == 3; })) << "asked again all the same";
}

TEST_F(Panes, AFailureAfterTheWindowWasClosedIsStillSaid)
{
    openTab(test::Storage);
    m_engine.answerTo(u"settings"_s, u"--library"_s, Answer::failure(1, "Error: no\n").heldAt("refused"));
    click(button(u"changeLibrary"_s));
    auto *dialog = settingsWindow()->findChild<QFileDialog *>(u"chooseFolder"_s);
    ASSERT_NE(dialog, nullptr);
    dialog->selectFile(m_engine.home());
    QMetaObject::invokeMethod(dialog, "accept");
    ASSERT_TRUE(waitFor([this] { return m_engine.count(u"settings"_s) == 2; }));
    settingsWindow()->close();
    m_engine.openGate("refused");
    EXPECT_TRUE(waitFor([this] { return sheet() != nullptr; }));
}

// Engine

TEST_F(Panes, HealthLinesWithTheirColours)
{
    m_engine.answer(u"doctor"_s, {R"([{"check":"Engine","ok":true},{"check":"Ollama","ok":false,"optional":true},
                                      {"check":"FFmpeg","ok":false},{"check":"Disk"}])"});
    openTab(test::Engine);
    EXPECT_TRUE(says(u"healthSummary"_s, u"2 parts need attention"_s));
    EXPECT_EQ(healthLines(), (QStringList{u"✓  Engine|#1e7a52"_s, u"–  Ollama  (optional, not installed)|#4a5d78"_s,
                                          u"✗  FFmpeg|#a1281c"_s, u"✗  Disk|#a1281c"_s}));
    m_engine.answer(u"doctor"_s, {R"([{"check":"Engine","ok":true}])"});
    click(button(u"refreshHealth"_s));
    EXPECT_TRUE(says(u"healthSummary"_s, u"Everything is installed and ready"_s));
    EXPECT_EQ(healthLines().size(), 1);
}

TEST_F(Panes, AnythingButAListIsAMissingEngine)
{
    openTab(test::Engine);
    EXPECT_TRUE(says(u"healthSummary"_s, u"Everything is installed and ready"_s));
    for (const QByteArray reply : {"", "{}", "null", "\xff", "[1"}) {
        m_engine.answer(u"doctor"_s, {reply});
        click(button(u"refreshHealth"_s));
        EXPECT_EQ(text(u"healthSummary"_s), u"Checking…"_s);
        EXPECT_TRUE(says(u"healthSummary"_s, u"Tuppi's engine could not be found — please run the installer again."_s));
        EXPECT_TRUE(healthLines().isEmpty());
    }
    m_engine.uninstall();
    click(button(u"refreshHealth"_s));
    EXPECT_TRUE(says(u"healthSummary"_s, u"Tuppi's engine could not be found — please run the installer again."_s));
}

TEST_F(Panes, TheInstallLogOrElseItsFolder)
{
    Opened opened;
    openTab(test::Engine);
    const QString logs = m_engine.home() + u"/Library/Logs"_s;
    click(button(u"openInstallLog"_s));
    writeFile(logs + u"/TuppiTranscriberInstall.log"_s, "done");
    click(button(u"openInstallLog"_s));
    EXPECT_EQ(opened.urls, (QList<QUrl>{QUrl::fromLocalFile(logs),
                                        QUrl::fromLocalFile(logs + u"/TuppiTranscriberInstall.log"_s)}));
}

// Keyboard

TEST_F(Panes, TabsByKeyboard)
{
    openSettings();
    auto *tabs = part<SettingsTabs>(u"settingsTabs"_s);
    EXPECT_EQ(focusName(), u"settingsTabs"_s);
    QList<int> seen;
    const auto step = [&](Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        press(key, modifiers);
        seen.append(tabs->currentIndex());
    };
    step(Qt::Key_Right);
    step(Qt::Key_Right);
    step(Qt::Key_Left);
    step(Qt::Key_End);
    step(Qt::Key_Right);
    step(Qt::Key_Tab, Qt::ControlModifier);
    step(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    step(Qt::Key_Home);
    step(Qt::Key_PageDown, Qt::ControlModifier);
    EXPECT_EQ(seen, (QList<int>{1, 2, 1, 4, 4, 0, 4, 0, 1}));
}

TEST_F(Panes, EveryControlByKeyboardAndNothingBesides)
{
    openSettings();
    const QList<QStringList> controls{
        {u"AppleLanguages"_s, u"notify"_s, u"sounds"_s, u"showHidden"_s, u"showAcknowledgements"_s},
        {u"engine"_s, u"language"_s, u"speakers"_s, u"quickMode"_s},
        {u"libraryPath"_s, u"changeLibrary"_s, u"openLibrary"_s},
        {u"addCustomModel"_s, u"pullField"_s, u"pullTextModel"_s},
        {u"refreshHealth"_s, u"openInstallLog"_s}};
    for (int tab = 0; tab < controls.size(); ++tab) {
        settingsWindow()->showTab(tab);
        part<SettingsTabs>(u"settingsTabs"_s)->setFocus();
        QStringList walked;
        for (press(Qt::Key_Tab); focusName() != u"settingsTabs"_s && walked.size() < 20; press(Qt::Key_Tab))
            walked.append(focusName());
        EXPECT_EQ(walked, controls.at(tab));
    }
}

TEST_F(Panes, EveryControlHasAName)
{
    m_engine.answer(u"models"_s, {R"({"custom":[{"id":"a","name":"Ada"}],"text_model":"q"})"});
    openSettings();
    ASSERT_TRUE(waitFor([this] { return part<QPushButton>(u"removeModel.0"_s) != nullptr; }));
    for (const QWidget *widget : settingsWindow()->findChildren<QWidget *>()) {
        if (widget->focusPolicy() == Qt::NoFocus || !(widget->focusPolicy() & Qt::TabFocus))
            continue;
        if (qobject_cast<const QAbstractItemView *>(widget))
            continue; // the list of a closed menu
        const QAccessibleInterface *face = QAccessible::queryAccessibleInterface(const_cast<QWidget *>(widget));
        EXPECT_FALSE(widget->objectName().isEmpty()) << widget->metaObject()->className();
        EXPECT_FALSE(face->text(QAccessible::Name).isEmpty()) << qPrintable(widget->objectName());
    }
}

TEST_F(Panes, EscapeAndControlWCloseAndTheWindowIsKept)
{
    openTab(test::Storage);
    SettingsWindow *first = settingsWindow();
    press(Qt::Key_Escape);
    EXPECT_FALSE(first->isVisible());
    m_app->showSettings();
    EXPECT_EQ(settingsWindow(), first);
    ASSERT_TRUE(waitFor([&] { return first->isActiveWindow(); }));
    EXPECT_EQ(part<SettingsTabs>(u"settingsTabs"_s)->currentIndex(), int(test::Storage));
    press(Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(first->isVisible());
    EXPECT_TRUE(window()->isVisible());
}

TEST_F(Panes, ReturnPressesTheButtonThatHasTheKeyboardAndNoOther)
{
    openTab(test::Engine);
    ASSERT_TRUE(says(u"healthSummary"_s, u"Everything is installed and ready"_s));
    const auto checks = [this] { return m_engine.count(u"doctor"_s); };
    press(Qt::Key_Return);
    settle();
    EXPECT_EQ(checks(), 1);
    ASSERT_TRUE(tabTo(u"refreshHealth"_s));
    press(Qt::Key_Return);
    EXPECT_TRUE(waitFor([&] { return checks() == 2; }));
}

// About and Acknowledgements

template <typename Window> Window *open()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (auto *window = qobject_cast<Window *>(widget))
            return window;
    }
    return nullptr;
}

TEST_F(Panes, TheAboutWindow)
{
    QCoreApplication::setApplicationVersion(u"1.2.3"_s);
    openWindow();
    m_app->perform(u"showAbout"_s);
    auto *about = open<AboutWindow>();
    ASSERT_NE(about, nullptr);
    const auto text = [&](const QString &name) { return about->findChild<QLabel *>(name)->text(); };
    EXPECT_EQ(text(u"aboutName"_s), u"Tuppi Transcriber"_s);
    EXPECT_EQ(text(u"aboutVersion"_s), u"Version 1.2.3"_s);
    EXPECT_EQ(text(u"aboutCredits"_s),
              u"Transcribes audio entirely on your Mac.\n\nSpeech recognition by NVIDIA Parakeet (CC BY 4.0) and OpenAI "
               "Whisper (MIT). Summaries by Google Gemma (Apache 2.0) via Ollama.\n\nSee Tuppi Transcriber › "
               "Acknowledgements for all credits."_s);
    EXPECT_TRUE(text(u"aboutBuild"_s).contains(u"THIRD-PARTY.md"_s));
    about->close();
    m_app->perform(u"showAbout"_s);
    EXPECT_EQ(open<AboutWindow>(), about);
}

TEST_F(Panes, TheAcknowledgementsAndTheirLinksByKeyboard)
{
    Opened opened;
    openWindow();
    m_app->perform(u"showAcknowledgements"_s);
    auto *acknowledgements = open<AcknowledgementsWindow>();
    ASSERT_NE(acknowledgements, nullptr);
    EXPECT_EQ(acknowledgements->size(), QSize(640, 620));
    const auto *text = acknowledgements->findChild<QTextBrowser *>();
    const QString plain = text->toPlainText();
    EXPECT_TRUE(plain.startsWith(u"Acknowledgements\nTuppi Transcriber runs entirely on your Mac"_s));
    EXPECT_TRUE(plain.contains(u"\nMLX\nApple (MLX Contributors) · MIT · https://github.com/ml-explore/mlx\nmlx-whisper\n"_s));
    EXPECT_TRUE(plain.contains(u"\nReal cat recordings. Shortened, looped and level-matched for the app.\nAll models and "
                                "tools are provided"_s));
    EXPECT_TRUE(plain.endsWith(u"Full licence texts are at the links above."_s));
    EXPECT_TRUE(opened.urls.isEmpty()) << "nothing goes out by itself";

    acknowledgements->activateWindow();
    ASSERT_TRUE(waitFor([&] { return acknowledgements->isActiveWindow(); }));
    ASSERT_TRUE(tabTo(u"acknowledgements"_s));
    press(Qt::Key_Tab);
    press(Qt::Key_Return);
    press(Qt::Key_Tab);
    press(Qt::Key_Return);
    EXPECT_EQ(opened.urls, (QList<QUrl>{QUrl(u"https://creativecommons.org/licenses/by/4.0/"_s),
                                        QUrl(u"https://huggingface.co/nvidia/parakeet-tdt-0.6b-v3"_s)}));
    press(Qt::Key_Escape);
    EXPECT_FALSE(acknowledgements->isVisible());
}

} // namespace

#include "PanesTest.moc"
