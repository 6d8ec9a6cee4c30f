// Which windows open, how they are found again, and how they go.

#include "viewer/ViewerTest.h"

#include <QDialog>
#include <QAbstractButton>
#include <QDir>
#include <QPlainTextEdit>
#include <QPointer>
#include <QScopeGuard>
#include <QTest>
#include <QWindow>

#include <csignal>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::engineProcesses;
using test::waitFor;
using test::writeFile;

namespace {

class ResultWindows : public test::ViewerTest
{
protected:
    QString makeTextCall(const QString &name)
    {
        QDir().mkpath(callDir(name));
        writeFile(callDir(name) + u"/call.md"_s, "---\ntitle: x\n---\n# Summary\n\nIt went well.\n");
        return callDir(name);
    }
    qsizetype count() const { return m_app->viewer().resultWindows.size(); }
    static QString textOf(ResultWindow *window)
    {
        return window->findChild<QPlainTextEdit *>(u"resultText"_s)->toPlainText();
    }
    static void press(QWidget *window, QKeyCombination key)
    {
        QTest::keyClick(window->windowHandle(), key.key(), key.keyboardModifiers());
    }
};

TEST_F(ResultWindows, AViewerShowsThePage)
{
    const QString call = makeCall(u"a"_s);
    ViewerWindow *opened = open(call);
    EXPECT_EQ(opened->windowTitle(), u"Talk"_s);
    EXPECT_EQ(opened->size(), QSize(900, 720));
    EXPECT_EQ(opened->property("callDir").toString(), call);
    EXPECT_EQ(ask(opened, u"tab"_s), "\"none\"");
    EXPECT_EQ(ask(opened, u"texts"_s), "{}");
    EXPECT_EQ(ask(opened, u"rtl"_s), "false");
}

TEST_F(ResultWindows, ThePageIsToldToBeginWithItsSummary)
{
    EXPECT_EQ(ask(open(makeCall(u"a"_s), true), u"tab"_s), "\"summary\"");
}

TEST_F(ResultWindows, OneViewerServesBothCommandsAndSwitchesItsTab)
{
    const QString call = makeCall(u"a"_s);
    ViewerWindow *opened = open(call);
    m_app->showResult(row(call), true);
    EXPECT_TRUE(becomes(opened, u"tab"_s, "\"summary\""));
    m_app->showResult(row(call), false);
    EXPECT_TRUE(becomes(opened, u"tab"_s, "\"transcript\""));
    EXPECT_EQ(count(), 1);
    EXPECT_EQ(viewer(call), opened);
}

TEST_F(ResultWindows, AMinimisedOneIsBroughtBack)
{
    const QString call = makeTextCall(u"a"_s);
    m_app->showResult(row(call), true);
    window(call, u"text"_s)->showMinimized();
    m_app->showResult(row(call), true);
    EXPECT_FALSE(window(call, u"text"_s)->isMinimized());
}

TEST_F(ResultWindows, WithoutAPageTheSummaryIsShownAsText)
{
    const QString call = makeTextCall(u"a"_s);
    m_app->showResult(row(call), true);
    const QPointer<ResultWindow> opened = window(call, u"text"_s);
    ASSERT_NE(opened, nullptr);
    EXPECT_EQ(opened->windowTitle(), u"Talk — Summary and Text"_s);
    EXPECT_EQ(textOf(opened), u"# Summary\n\nIt went well.\n"_s);
    EXPECT_TRUE(opened->findChild<QPlainTextEdit *>()->isReadOnly());
    m_app->showResult(row(call), true);
    EXPECT_EQ(count(), 1);
    EXPECT_EQ(window(call, u"text"_s), opened);
}

TEST_F(ResultWindows, APageThatCameLaterGetsAWindowOfItsOwn)
{
    const QString call = makeTextCall(u"a"_s);
    m_app->showResult(row(call), true);
    makeCall(u"a"_s);
    open(call);
    EXPECT_NE(window(call, u"text"_s), nullptr);
    EXPECT_EQ(count(), 2);
}

TEST_F(ResultWindows, WithoutFilesNothingOpens)
{
    QDir().mkpath(callDir(u"a"_s));
    m_app->showResult(row(callDir(u"a"_s)), true);
    m_app->showResult(row(callDir(u"missing"_s)), false);
    m_app->showResult({{u"title"_s, u"Talk"_s}}, false);
    EXPECT_EQ(count(), 0);
    EXPECT_EQ(sheet(), nullptr);
}

TEST_F(ResultWindows, ThoseOfAFolderAreClosedTogether)
{
    const QString call = makeTextCall(u"a"_s);
    const QString longer = makeTextCall(u"ab"_s);
    m_app->showResult(row(call), true);
    m_app->showResult(row(longer), true);
    makeCall(u"a"_s);
    open(call);
    m_app->closeResultWindowsForDir({});
    EXPECT_EQ(count(), 3);
    m_app->closeResultWindowsForDir(call);
    EXPECT_EQ(count(), 1);
    EXPECT_NE(window(longer, u"text"_s), nullptr);
}

TEST_F(ResultWindows, TheFrameIsRememberedByKind)
{
    const QString text = makeTextCall(u"t"_s);
    m_app->showResult(row(text), true);
    window(text, u"text"_s)->setGeometry(30, 40, 500, 400);
    window(text, u"text"_s)->close();
    const QString other = makeTextCall(u"u"_s);
    m_app->showResult(row(other), true);
    EXPECT_EQ(window(other, u"text"_s)->geometry(), QRect(30, 40, 500, 400));
    EXPECT_EQ(open(makeCall(u"v"_s))->size(), QSize(900, 720));
    EXPECT_TRUE(settings().contains(u"TranscriberText"_s));
}

TEST_F(ResultWindows, TheFrameIsRememberedOnceItRests)
{
    const QString first = makeTextCall(u"a"_s), second = makeTextCall(u"b"_s);
    m_app->showResult(row(first), true);
    ResultWindow *opened = window(first, u"text"_s);
    opened->setGeometry(30, 40, 500, 400);
    const auto stored = [this] {
        return QFile::exists(settingsPath()) ? settings().value(u"TranscriberText"_s).toString() : QString();
    };
    EXPECT_TRUE(waitFor([&] { return stored() == QString::fromLatin1(opened->saveGeometry().toBase64()); }));
    m_app->showResult(row(second), true);
    EXPECT_EQ(window(second, u"text"_s)->geometry(), QRect(30, 40, 500, 400)) << "the first is still open";
}

TEST_F(ResultWindows, KeysCloseSaveAndZoom)
{
    const QString call = makeCall(u"a"_s);
    QPointer<ViewerWindow> opened = open(call);
    press(opened, Qt::Key_Escape);
    EXPECT_TRUE(opened->isVisible());
    press(opened, Qt::CTRL | Qt::Key_S);
    auto *dialog = opened->findChild<QDialog *>();
    ASSERT_NE(dialog, nullptr);
    dialog->reject();
    opened->activateWindow();
    ASSERT_TRUE(waitFor([&] { return opened->isActiveWindow(); }));
    const QByteArray width = ask(opened, u"innerWidth"_s);
    press(opened, Qt::CTRL | Qt::Key_Plus);
    EXPECT_TRUE(waitFor([&] { return ask(opened, u"innerWidth"_s).toInt() < width.toInt(); }));
    press(opened, Qt::CTRL | Qt::Key_Minus);
    press(opened, Qt::CTRL | Qt::Key_Minus);
    EXPECT_TRUE(waitFor([&] { return ask(opened, u"innerWidth"_s).toInt() > width.toInt(); }));
    press(opened, Qt::CTRL | Qt::Key_0);
    EXPECT_TRUE(becomes(opened, u"innerWidth"_s, width));
    press(opened, Qt::CTRL | Qt::Key_W);
    EXPECT_EQ(count(), 0);
    EXPECT_TRUE(waitFor([&] { return opened.isNull(); }));
}

TEST_F(ResultWindows, TheApplicationMayEndUnderTheSaveDialog)
{
    const QString call = makeTextCall(u"a"_s);
    m_app->showResult(row(call), true);
    press(window(call, u"text"_s), Qt::CTRL | Qt::Key_S);
    ASSERT_NE(window(call, u"text"_s)->findChild<QDialog *>(), nullptr);
    destroy();
}

TEST_F(ResultWindows, TheStripOffersToSaveAndToShare)
{
    const QString call = makeTextCall(u"a"_s);
    m_app->showResult(row(call), true);
    ResultWindow *opened = window(call, u"text"_s);
    int saves = 0;
    QList<QWidget *> anchors;
    QObject::connect(opened, &ResultWindow::saveRequested, opened, [&] { ++saves; });
    QObject::connect(opened, &ResultWindow::shareRequested, opened, [&](QWidget *anchor) { anchors.append(anchor); });
    auto *save = opened->findChild<QAbstractButton *>(u"saveWindowText"_s);
    auto *share = opened->findChild<QAbstractButton *>(u"shareWindowText"_s);
    EXPECT_EQ(save->text(), u"Save as .txt…"_s);
    EXPECT_TRUE(save->toolTip().contains(u"Save this transcript as a text file"_s));
    EXPECT_EQ(share->accessibleName(), u"Share"_s);
    EXPECT_TRUE(share->toolTip().contains(u"Share as a text file (AirDrop, Mail, Messages…)"_s));
    save->click();
    EXPECT_EQ(saves, 1);
    share->click();
    EXPECT_EQ(saves, 1);
    EXPECT_EQ(anchors, QList<QWidget *>{share});
}

TEST_F(ResultWindows, TheStripKeepsItsDistancesInBothDirections)
{
    const auto restore = qScopeGuard([] { QApplication::setLayoutDirection(Qt::LeftToRight); });
    for (const bool mirrored : {false, true}) {
        SCOPED_TRACE(mirrored);
        QApplication::setLayoutDirection(mirrored ? Qt::RightToLeft : Qt::LeftToRight);
        const QString call = makeTextCall(mirrored ? u"b"_s : u"a"_s);
        m_app->showResult(row(call), true);
        ResultWindow *opened = window(call, u"text"_s);
        const auto place = [&](const QString &name) {
            auto *button = opened->findChild<QAbstractButton *>(name);
            return QRect(button->mapTo(opened, QPoint()), button->size());
        };
        const QRect save = place(u"saveWindowText"_s), share = place(u"shareWindowText"_s);
        EXPECT_EQ(mirrored ? share.x() : opened->width() - share.x() - share.width(), 10);
        EXPECT_EQ(mirrored ? save.x() - share.x() - share.width() : share.x() - save.x() - save.width(), 8);
    }
}

/// A second of silence.
QByteArray silence()
{
    const QByteArray samples(16000, '\x80');
    const auto number = [](quint32 value) {
        return QByteArray(reinterpret_cast<const char *>(&value), sizeof value);
    };
    return "RIFF" + number(36 + 16000) + "WAVEfmt " + number(16) + QByteArray("\1\0\1\0", 4) + number(16000)
        + number(16000) + QByteArray("\1\0\10\0", 4) + "data" + number(16000) + samples;
}

TEST_F(ResultWindows, SoundPlaysWithoutAGestureAndEndsWithTheWindow)
{
    const QString call = makeCall(u"a"_s, "<audio loop autoplay src='audio file.wav'></audio>");
    writeFile(call + u"/audio file.wav"_s, silence());
    QPointer<ViewerWindow> opened = open(call);
    EXPECT_TRUE(becomes(opened, u"document.querySelector('audio').currentTime > 0.05"_s, "true"));
    opened->close();
    EXPECT_EQ(count(), 0);
    EXPECT_TRUE(waitFor([&] { return opened.isNull(); }));
    EXPECT_TRUE(waitFor([] { return engineProcesses("renderer").isEmpty(); })) << "the page is still there";
}

TEST_F(ResultWindows, APageThatHangsIsClosedAllTheSame)
{
    const QString call = makeCall(u"a"_s);
    QPointer<ViewerWindow> opened = open(call);
    page(opened)->run(u"for (;;) ;"_s);
    opened->close();
    EXPECT_EQ(count(), 0);
    EXPECT_TRUE(waitFor([&] { return opened.isNull(); }));
}

TEST_F(ResultWindows, APageWhoseProcessDiedCanBeLoadedAgain)
{
    const QString call = makeCall(u"a"_s);
    ViewerWindow *opened = open(call);
    const QList<int> renderers = engineProcesses("renderer");
    ASSERT_FALSE(renderers.isEmpty());
    for (const int renderer : renderers)
        ::kill(renderer, SIGKILL);
    ASSERT_TRUE(waitFor([] { return sheet() != nullptr; }));
    EXPECT_EQ(sheet()->text().message, u"The transcript page has stopped"_s);
    EXPECT_EQ(sheet()->text().buttons, (QStringList{u"Load Again"_s, u"Close Window"_s}));
    sheet()->answer(0);
    EXPECT_TRUE(becomes(opened, u"answers"_s, "[]"));
    EXPECT_EQ(viewer(call), opened);
}

TEST_F(ResultWindows, APageWhoseProcessDiedCanBeClosed)
{
    const QString call = makeCall(u"a"_s);
    QPointer<ViewerWindow> opened = open(call);
    for (const int renderer : engineProcesses("renderer"))
        ::kill(renderer, SIGKILL);
    ASSERT_TRUE(waitFor([] { return sheet() != nullptr; }));
    sheet()->answer(1);
    EXPECT_EQ(count(), 0);
    EXPECT_TRUE(waitFor([&] { return opened.isNull(); }));
}

TEST_F(ResultWindows, WithoutTheWebEngineTheTextIsOffered)
{
    const test::Environment lacking("QTWEBENGINEPROCESS_PATH", "/nonexistent/QtWebEngineProcess");
    const QString call = makeTextCall(u"a"_s);
    makeCall(u"a"_s);
    m_app->showResult(row(call), false);
    EXPECT_EQ(count(), 0);
    ASSERT_NE(sheet(), nullptr);
    EXPECT_EQ(sheet()->text().message, u"The transcript page cannot be shown"_s);
    EXPECT_EQ(sheet()->text().buttons, (QStringList{u"Show Text"_s, u"Cancel"_s}));
    sheet()->answer(0);
    ASSERT_NE(window(call, u"text"_s), nullptr);
    EXPECT_EQ(textOf(window(call, u"text"_s)), u"# Summary\n\nIt went well.\n"_s);
}

TEST_F(ResultWindows, WithoutASandboxThePersonDecides)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only an administrator's pages cannot be shut off";
    const test::Environment lacking("QTWEBENGINE_DISABLE_SANDBOX", nullptr);
    const QString call = makeCall(u"a"_s);
    m_app->showResult(row(call), false);
    EXPECT_EQ(count(), 0);
    ASSERT_NE(sheet(), nullptr);
    EXPECT_EQ(sheet()->text().buttons, (QStringList{u"Show Text"_s, u"Open Anyway"_s, u"Cancel"_s}));
    sheet()->answer(2);
    EXPECT_EQ(count(), 0);
    m_app->showResult(row(call), false);
    ASSERT_NE(sheet(), nullptr);
    sheet()->answer(1);
    ASSERT_NE(viewer(call), nullptr);
    EXPECT_TRUE(becomes(viewer(call), u"answers"_s, "[]"));
}

TEST_F(ResultWindows, AskedTwiceWithoutASandboxOpensOneWindow)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only an administrator's pages cannot be shut off";
    const test::Environment lacking("QTWEBENGINE_DISABLE_SANDBOX", nullptr);
    const QString call = makeCall(u"a"_s);
    m_app->showResult(row(call), false); // by its row
    QPointer<Sheet> first = sheet();
    m_app->showResult(row(call), false); // by its notice
    QPointer<Sheet> second;
    int windows = 0;
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (auto *open = qobject_cast<Sheet *>(widget); open && open != first)
            second = open;
    }
    ASSERT_TRUE(first && second);
    second->answer(1);
    ResultWindow *const opened = viewer(call);
    ASSERT_NE(opened, nullptr);
    first->answer(1);
    EXPECT_EQ(viewer(call), opened);
    EXPECT_EQ(count(), 1);
    for (QWidget *widget : QApplication::topLevelWidgets())
        windows += qobject_cast<ResultWindow *>(widget) ? 1 : 0;
    EXPECT_EQ(windows, 1);
}

} // namespace
