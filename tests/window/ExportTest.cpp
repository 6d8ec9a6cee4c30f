// A transcript on its way out: saved as a text file, or handed to other programs.

#include "support/Drive.h"
#include "window/Desktop.h"
#include "window/WindowTest.h"

#include "export/SaveTextDialog.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QTest>

#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::click;
using test::job;
using test::press;
using test::readFile;
using test::waitFor;
using test::writeFile;

namespace {

class Export : public test::WindowTest
{
protected:
    void SetUp() override
    {
        QDir().mkpath(temp());
        QDir().mkpath(bin());
        QDir().mkpath(documents());
    }
    QString temp() const { return m_engine.path(u"temp"_s); }
    QString bin() const { return m_engine.path(u"bin"_s); }
    QString documents() const { return m_engine.home() + u"/Documents"_s; }
    QString folder(const QString &title) const { return m_engine.home() + u"/calls/"_s + title; }
    QString shared(const QString &name) const { return temp() + u"/Tuppi Transcriber/"_s + name; }

    /// A finished job with a text in each form.
    QJsonObject call(const QString &id, const QString &name, const QString &title)
    {
        QDir().mkpath(folder(name));
        writeFile(folder(name) + u"/transcript.raw.txt"_s, "[00:01] A: Привіт");
        writeFile(folder(name) + u"/transcript.txt"_s, "Привіт");
        writeFile(folder(name) + u"/call.md"_s, "---\nid: 1\n---\n# Summary");
        QJsonObject entry = job(id, title, u"ready"_s);
        entry.insert(u"call_dir"_s, folder(name));
        return entry;
    }
    void openWith(const QList<QJsonObject> &jobs)
    {
        m_engine.answerHistory(test::historyOf(jobs));
        ASSERT_NO_FATAL_FAILURE(openWindow());
    }
    void openOne() { openWith({call(u"a"_s, u"A"_s, u"Q3: plan/budget?"_s)}); }
    /// A program of the desktop that writes its arguments down.
    void install(const QString &name, const QByteArray &script)
    {
        writeFile(bin() + u'/' + name, "#!/bin/sh\n" + script);
        QFile::setPermissions(bin() + u'/' + name, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    /// Nothing that the computer itself has is found.
    void hidePrograms() { qputenv("PATH", QFile::encodeName(bin())); }

    SaveTextDialog *dialog(QWidget *over = nullptr) const
    {
        // Without a meta-object of its own it is found by its name.
        QWidget *window = over ? over : static_cast<QWidget *>(m_window);
        return static_cast<SaveTextDialog *>(window->findChild<QFileDialog *>(u"saveText"_s));
    }
    QComboBox *formats() const { return dialog()->findChild<QComboBox *>(u"fileTypeCombo"_s); }
    QLineEdit *name() const { return dialog()->findChild<QLineEdit *>(u"fileNameEdit"_s); }
    void save() { QMetaObject::invokeMethod(dialog(), "accept"); }
    bool dialogCloses() const
    {
        return waitFor([this] { return dialog() == nullptr; });
    }
    Sheet *questionOn(QWidget *over) const { return over->findChild<Sheet *>(); }
    QString format() const { return settings().value(u"txtFormat"_s).toString(); }

    static QMenu *menu() { return qobject_cast<QMenu *>(QApplication::activePopupWidget()); }
    bool menuOpens() const
    {
        return waitFor([] { return menu() && menu()->objectName() == u"shareMenu"_s; });
    }
    static QStringList offered()
    {
        QStringList titles;
        for (const QAction *action : menu()->actions())
            titles.append(action->text());
        return titles;
    }
    void take(const QString &title)
    {
        for (QAction *action : menu()->actions()) {
            if (action->text() == title) {
                QTest::mouseClick(menu(), Qt::LeftButton, {}, menu()->actionGeometry(action).center());
                return;
            }
        }
        FAIL() << qPrintable(title) << " is not offered";
    }

    const test::Environment m_temp{"TMPDIR", QFile::encodeName(temp())};
    const test::Environment m_programs{"PATH", qgetenv("PATH")};
};

// Saving

TEST_F(Export, TheDialogProposesNamePlaceAndForm)
{
    openOne();
    m_app->saveRowText(u"a"_s);
    ASSERT_NE(dialog(), nullptr);
    EXPECT_EQ(dialog()->windowModality(), Qt::WindowModal);
    EXPECT_EQ(dialog()->windowTitle(), u"Save the transcript as a text file"_s);
    EXPECT_EQ(name()->text(), u"Q3- plan-budget-.txt"_s);
    EXPECT_EQ(dialog()->directory().path(), documents());
    QStringList titles;
    for (int index = 0; index < formats()->count(); ++index)
        titles.append(formats()->itemText(index));
    EXPECT_EQ(titles, (QStringList{u"With timestamps and speakers"_s, u"Clean text"_s, u"Summary, tasks and full text"_s}));
    EXPECT_EQ(formats()->currentIndex(), 0);
    EXPECT_EQ(dialog()->findChild<QLabel *>(u"fileTypeLabel"_s)->text(), u"Format:"_s);
}

TEST_F(Export, TheSummaryIsATextFileToo)
{
    openOne();
    m_defaults->setValue(u"txtFormat"_s, u"summary"_s);
    m_app->saveRowText(u"a"_s);
    EXPECT_EQ(formats()->currentIndex(), 2);
    EXPECT_EQ(name()->text(), u"Q3- plan-budget-.txt"_s);
    save();
    ASSERT_TRUE(dialogCloses());
    EXPECT_EQ(readFile(documents() + u"/Q3- plan-budget-.txt"_s), "# Summary");
}

TEST_F(Export, EachFormIsSavedAndRemembered)
{
    openOne();
    const QByteArray texts[]{"[00:01] A: Привіт", "Привіт", "# Summary"};
    const QString keys[]{u"timestamps"_s, u"plain"_s, u"summary"_s};
    for (int index : {1, 2, 0}) {
        m_app->saveRowText(u"a"_s);
        const QString file = u"form %1.txt"_s.arg(index);
        formats()->setCurrentIndex(index);
        Q_EMIT formats()->activated(index);
        name()->setText(file);
        save();
        ASSERT_TRUE(dialogCloses());
        EXPECT_EQ(readFile(documents() + u'/' + file), texts[index]);
        EXPECT_EQ(summary(), QString(u"Saved "_s + file));
        EXPECT_EQ(format(), keys[index]);
        EXPECT_EQ(sheet(), nullptr);
        m_app->saveRowText(u"a"_s);
        EXPECT_EQ(formats()->currentIndex(), index);
        dialog()->reject();
        ASSERT_TRUE(dialogCloses());
    }
}

TEST_F(Export, TheFormStaysWhenTheDialogIsCancelled)
{
    openOne();
    m_app->saveRowText(u"a"_s);
    formats()->setCurrentIndex(2);
    dialog()->reject();
    ASSERT_TRUE(dialogCloses());
    EXPECT_FALSE(m_defaults->contains(u"txtFormat"_s));
    EXPECT_EQ(QDir(documents()).entryList(QDir::Files), QStringList());
}

TEST_F(Export, TheLastFolderComesAgainWhileItIsThere)
{
    openOne();
    const QString other = m_engine.home() + u"/Texts"_s;
    QDir().mkpath(other);
    m_app->saveRowText(u"a"_s);
    dialog()->setDirectory(other);
    save();
    ASSERT_TRUE(dialogCloses());
    EXPECT_EQ(readFile(other + u"/Q3- plan-budget-.txt"_s), "[00:01] A: Привіт");
    m_app->saveRowText(u"a"_s);
    EXPECT_EQ(dialog()->directory().path(), other);
    dialog()->reject();
    ASSERT_TRUE(dialogCloses());
    QDir(other).removeRecursively();
    m_app->saveRowText(u"a"_s);
    EXPECT_EQ(dialog()->directory().path(), documents());
}

TEST_F(Export, ATranscriptWithoutATextIsTold)
{
    QDir().mkpath(folder(u"E"_s));
    writeFile(folder(u"E"_s) + u"/transcript.raw.txt"_s, {});
    QJsonObject entry = job(u"e"_s, {}, u"ready"_s);
    entry.insert(u"call_dir"_s, folder(u"E"_s));
    openWith({entry});
    m_app->saveRowText(u"e"_s);
    EXPECT_EQ(name()->text(), u"Transcript.txt"_s);
    dialog()->selectNameFilter(dialog()->nameFilters().at(1));
    save();
    ASSERT_TRUE(waitFor([this] { return sheet() != nullptr; }));
    EXPECT_EQ(sheet()->text().message, u"Could not save the text file"_s);
    EXPECT_EQ(sheet()->text().detail, u"This transcript has no text yet."_s);
    EXPECT_EQ(sheetButtons(), QStringList{u"OK"_s});
    EXPECT_EQ(format(), u"plain"_s) << "remembered all the same";
    EXPECT_EQ(QDir(documents()).entryList(QDir::Files), QStringList());
}

TEST_F(Export, AFailedWriteIsToldInTheSystemsWords)
{
    openOne();
    m_app->saveRowText(u"a"_s);
    QDir(documents()).removeRecursively(); // under the open dialog
    save();
    ASSERT_TRUE(waitFor([this] { return sheet() != nullptr; }));
    EXPECT_EQ(sheet()->text().message, u"Could not save the text file"_s);
    EXPECT_EQ(sheet()->text().detail, qt_error_string(ENOENT));
    EXPECT_EQ(format(), u"timestamps"_s);
}

TEST_F(Export, OnAFullDiskNothingIsLostAndTheReasonTold)
{
    const test::Drive drive(documents(), 16);
    if (!drive.isMounted())
        GTEST_SKIP() << "only an administrator can mount a drive";
    openOne();
    writeFile(folder(u"A"_s) + u"/transcript.raw.txt"_s, QByteArray(60'000, 'x'));
    writeFile(documents() + u"/a.txt"_s, "earlier");
    m_app->saveRowText(u"a"_s);
    name()->setText(u"a.txt"_s);
    save();
    ASSERT_TRUE(waitFor([this] { return questionOn(dialog()) != nullptr; }));
    questionOn(dialog())->answer(1);
    ASSERT_TRUE(dialogCloses());
    ASSERT_TRUE(waitFor([this] { return sheet() != nullptr; }));
    EXPECT_EQ(sheet()->text().detail, qt_error_string(ENOSPC));
    EXPECT_EQ(readFile(documents() + u"/a.txt"_s), "earlier");
    EXPECT_EQ(QDir(documents()).entryList(QDir::Files | QDir::Hidden), QStringList{u"a.txt"_s});
}

TEST_F(Export, AFileIsReplacedOnlyAfterAQuestion)
{
    openOne();
    writeFile(documents() + u"/mine.txt"_s, "earlier");
    m_app->saveRowText(u"a"_s);
    name()->setText(u"mine"_s); // is saved as mine.txt
    save();
    ASSERT_TRUE(waitFor([this] { return questionOn(dialog()) != nullptr; }));
    EXPECT_EQ(questionOn(dialog())->text().message, u"“mine.txt” already exists. Do you want to replace it?"_s);
    questionOn(dialog())->answer(0);
    ASSERT_TRUE(waitFor([this] { return questionOn(dialog()) == nullptr; }));
    EXPECT_TRUE(dialog()->isVisible()) << "another name can be given";
    EXPECT_EQ(readFile(documents() + u"/mine.txt"_s), "earlier");
    save();
    ASSERT_TRUE(waitFor([this] { return questionOn(dialog()) != nullptr; }));
    questionOn(dialog())->answer(1);
    ASSERT_TRUE(dialogCloses());
    EXPECT_EQ(readFile(documents() + u"/mine.txt"_s), "[00:01] A: Привіт");
    EXPECT_EQ(summary(), u"Saved mine.txt"_s);
}

TEST_F(Export, ANameOfAFolderGoesThereAndNoNameDoesNothing)
{
    openOne();
    QDir(documents()).mkdir(u"Sub"_s);
    m_app->saveRowText(u"a"_s);
    name()->setText(u"Sub"_s);
    save();
    EXPECT_EQ(dialog()->directory().path(), QString(documents() + u"/Sub"_s));
    name()->clear();
    save();
    ASSERT_NE(dialog(), nullptr);
    EXPECT_TRUE(dialog()->isVisible());
}

TEST_F(Export, WithoutAFolderNothingIsSavedOrShared)
{
    openWith({QJsonObject{{u"id"_s, u"n"_s}, {u"status"_s, u"ready"_s}}});
    m_app->saveRowText(u"n"_s);
    m_app->shareRowText(u"n"_s);
    m_app->saveRowText(u"gone"_s);
    EXPECT_EQ(dialog(), nullptr);
    EXPECT_FALSE(QFileInfo::exists(temp() + u"/Tuppi Transcriber"_s));
}

TEST_F(Export, ATranscriptWithoutATextIsNotShared)
{
    openWith({call(u"a"_s, u"A"_s, u"Talk"_s)});
    for (const QString &file : {u"/transcript.raw.txt"_s, u"/transcript.txt"_s})
        writeFile(folder(u"A"_s) + file, {});
    m_app->shareRowText(u"a"_s);
    settle();
    EXPECT_EQ(menu(), nullptr);
    EXPECT_FALSE(QFileInfo::exists(temp() + u"/Tuppi Transcriber"_s));
    EXPECT_EQ(sheet(), nullptr);
}

// Save Transcript as Text…

TEST_F(Export, TheMenuBarSavesTheSelectedRowWhenItIsReady)
{
    QJsonObject failed = call(u"f"_s, u"F"_s, u"Failed"_s);
    failed.insert(u"status"_s, u"failed"_s);
    openWith({failed, call(u"a"_s, u"A"_s, u"Ready"_s)});
    press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(dialog(), nullptr) << "nothing is selected";
    list()->selectRow(0);
    press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(dialog(), nullptr) << "it is not ready";
    list()->selectRow(1);
    press(Qt::Key_S, Qt::ControlModifier);
    ASSERT_NE(dialog(), nullptr);
    EXPECT_EQ(name()->text(), u"Ready.txt"_s);
}

TEST_F(Export, TheMenuBarSavesAResultWindowThatIsInFront)
{
    openWith({call(u"a"_s, u"A"_s, u"In front"_s), call(u"b"_s, u"B"_s, u"Selected"_s)});
    list()->selectRow(1);
    auto result = std::make_unique<QWidget>();
    const auto bringForward = [&] {
        result->show();
        result->activateWindow();
        return waitFor([&] { return result->isActiveWindow(); });
    };
    result->setProperty("callDir", folder(u"A"_s));
    ASSERT_TRUE(bringForward());
    m_app->saveFrontText();
    ASSERT_NE(dialog(result.get()), nullptr);
    EXPECT_EQ(dialog(), nullptr);
    EXPECT_EQ(dialog(result.get())->findChild<QLineEdit *>(u"fileNameEdit"_s)->text(), u"In front.txt"_s);
    const QPointer<SaveTextDialog> open = dialog(result.get());
    result.reset(); // a rename may close it under its dialog
    EXPECT_FALSE(open);

    result = std::make_unique<QWidget>();
    result->setProperty("callDir", folder(u"gone"_s));
    ASSERT_TRUE(bringForward());
    m_app->saveFrontText();
    ASSERT_NE(dialog(), nullptr) << "a window without a folder is no result window";
    EXPECT_EQ(name()->text(), u"Selected.txt"_s);
}

// Sharing

TEST_F(Export, ShareOffersWhatTheDesktopCanDo)
{
    openOne();
    hidePrograms();
    m_app->shareRowText(u"a"_s);
    ASSERT_TRUE(menuOpens());
    EXPECT_EQ(offered(), (QStringList{u"Copy File"_s, u"Show in Finder"_s}));
    EXPECT_EQ(menu()->pos(), row(u"a"_s)->mapToGlobal(row(u"a"_s)->rect().bottomLeft()));
    menu()->close();
    install(u"xdg-open"_s, {});
    install(u"xdg-email"_s, {});
    install(u"xdg-mime"_s, "echo\n");
    m_app->shareRowText(u"a"_s);
    ASSERT_TRUE(menuOpens());
    EXPECT_EQ(offered(), (QStringList{u"Open"_s, u"Copy File"_s, u"Show in Finder"_s})) << "no mail program";
    menu()->close();
    install(u"xdg-mime"_s, "[ \"$*\" = 'query default x-scheme-handler/mailto' ] && echo mail.desktop\n");
    m_app->shareRowText(u"a"_s);
    ASSERT_TRUE(menuOpens());
    EXPECT_EQ(offered(), (QStringList{u"Send by Email…"_s, u"Open"_s, u"Copy File"_s, u"Show in Finder"_s}));
    menu()->close();
}

TEST_F(Export, TheFileIsPrivateAndTheSameEachTime)
{
    openOne();
    hidePrograms();
    for (const char *text : {"first", "second"}) {
        writeFile(folder(u"A"_s) + u"/transcript.raw.txt"_s, text);
        m_app->shareRowText(u"a"_s);
        ASSERT_TRUE(menuOpens());
        menu()->close();
        EXPECT_EQ(readFile(shared(u"Q3- plan-budget-.txt"_s)), text);
    }
    const QFileInfo folder(temp() + u"/Tuppi Transcriber"_s);
    EXPECT_EQ(folder.permissions() & (QFile::ReadGroup | QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther), 0);
    EXPECT_EQ(QDir(folder.filePath()).entryList(QDir::Files), QStringList{u"Q3- plan-budget-.txt"_s});
}

TEST_F(Export, TheRememberedFormIsShared)
{
    openOne();
    hidePrograms();
    m_defaults->setValue(u"txtFormat"_s, u"summary"_s);
    m_app->shareRowText(u"a"_s);
    ASSERT_TRUE(menuOpens());
    menu()->close();
    EXPECT_EQ(readFile(shared(u"Q3- plan-budget-.txt"_s)), "# Summary");
}

TEST_F(Export, CopyFilePutsTheFileOnTheClipboard)
{
    openOne();
    hidePrograms();
    m_app->shareRowText(u"a"_s);
    ASSERT_TRUE(menuOpens());
    take(u"Copy File"_s);
    const QMimeData *data = QApplication::clipboard()->mimeData();
    const QUrl url = QUrl::fromLocalFile(shared(u"Q3- plan-budget-.txt"_s));
    EXPECT_EQ(data->urls(), QList<QUrl>{url});
    EXPECT_EQ(data->data(u"x-special/gnome-copied-files"_s), QByteArray("copy\n" + url.toEncoded()));
}

TEST_F(Export, OpenAndShowInFinderReachTheFile)
{
    test::Openings openings;
    openOne();
    hidePrograms();
    install(u"xdg-open"_s, {});
    const QString file = shared(u"Q3- plan-budget-.txt"_s);
    m_app->shareRowText(u"a"_s);
    ASSERT_TRUE(menuOpens());
    take(u"Open"_s);
    EXPECT_TRUE(waitFor([&] { return openings.paths == QStringList{file}; }));
    m_app->shareRowText(u"a"_s);
    ASSERT_TRUE(menuOpens());
    take(u"Show in Finder"_s);
    EXPECT_TRUE(waitFor([&] { return openings.paths.value(1) == QFileInfo(file).path(); }));
}

TEST_F(Export, SendByEmailAttachesTheFile)
{
    openOne();
    hidePrograms();
    const QString record = m_engine.path(u"email"_s);
    install(u"xdg-mime"_s, "echo mail.desktop\n");
    install(u"xdg-email"_s, "printf '%s\\n' \"$@\" >'" + record.toUtf8() + ".new' && /bin/mv '" + record.toUtf8()
                                + ".new' '" + record.toUtf8() + "'\n");
    m_app->shareRowText(u"a"_s);
    ASSERT_TRUE(menuOpens());
    take(u"Send by Email…"_s);
    EXPECT_TRUE(waitFor([&] { return QFileInfo::exists(record); }));
    EXPECT_EQ(QString::fromUtf8(readFile(record)),
              QString(u"--utf8\n--subject\nQ3: plan/budget?\n--attach\n"_s + shared(u"Q3- plan-budget-.txt"_s) + u'\n'));
}

TEST_F(Export, ASecondShareWhileAMenuIsOpenChangesNothing)
{
    openOne();
    hidePrograms();
    m_app->shareRowText(u"a"_s);
    m_app->shareRowText(u"a"_s);
    ASSERT_TRUE(menuOpens());
    settle();
    EXPECT_EQ(window()->findChildren<QMenu *>(u"shareMenu"_s).size(), 1);
    menu()->close();
}

TEST_F(Export, AnAnchorThatGoesTakesTheMenuWithIt)
{
    openOne();
    hidePrograms();
    auto anchor = std::make_unique<QWidget>();
    anchor->show();
    m_app->shareTextForDir(folder(u"A"_s), anchor.get());
    anchor.reset();
    settle();
    EXPECT_EQ(menu(), nullptr);
    EXPECT_TRUE(QFileInfo::exists(shared(u"Q3- plan-budget-.txt"_s)));
}

TEST_F(Export, APlantedLinkIsNotFollowed)
{
    openOne();
    hidePrograms();
    const QString trap = m_engine.path(u"trap"_s);
    QDir().mkpath(trap);
    QFile::link(trap, temp() + u"/Tuppi Transcriber"_s);
    m_app->shareRowText(u"a"_s);
    ASSERT_TRUE(menuOpens());
    menu()->close();
    EXPECT_EQ(QDir(trap).entryList(QDir::Files), QStringList());
    EXPECT_EQ(readFile(temp() + u"/Tuppi Transcriber 2/Q3- plan-budget-.txt"_s), "[00:01] A: Привіт");
}

TEST_F(Export, WhereNothingCanBeWrittenThatIsTold)
{
    openOne();
    qputenv("TMPDIR", "/proc/no/such/place");
    m_app->shareRowText(u"a"_s);
    ASSERT_NE(sheet(), nullptr) << qPrintable(QDir::tempPath());
    EXPECT_EQ(sheet()->text().message, u"Could not save the text file"_s);
    EXPECT_EQ(sheet()->text().detail, u"There is no safe place for a temporary file."_s);
}

} // namespace
