// The window around the list: its frame, its empty state, its line of summary, its sheets, its motion.

#include "window/WindowTest.h"

#include "ui/Sheet.h"
#include "ui/Stage.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QHelpEvent>
#include <QToolTip>

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::Answer;
using test::click;
using test::job;
using test::Shown;
using test::waitFor;

namespace {

class WindowState : public test::WindowTest
{
protected:
    QWidget *part(const QString &name) const { return window()->findChild<QWidget *>(name); }
    /// Where a part stands in the window.
    QRect placeOf(const QString &name) const
    {
        const QWidget *widget = part(name);
        return {widget->mapTo(window(), QPoint()), widget->size()};
    }
};

TEST_F(WindowState, SizesOfAFirstStart)
{
    openWindow();
    EXPECT_EQ(window()->centralWidget()->size(), QSize(780, 500));
    window()->resize(1, 1);
    EXPECT_EQ(window()->centralWidget()->size(), QSize(720, 360));
    EXPECT_EQ(window()->windowTitle(), u"Tuppi Transcriber"_s);
    const QRect footer(placeOf(u"addButton"_s).topLeft() - QPoint(8, 7), QSize(window()->width() - 36, 54));
    EXPECT_EQ(footer.x(), 18);
    EXPECT_EQ(window()->height() - footer.bottom() - 1, 16);
    EXPECT_EQ(placeOf(u"drop"_s).bottom() + 1 + 8, footer.y());
    EXPECT_EQ(placeOf(u"drop"_s).width(), window()->width());
    EXPECT_EQ(placeOf(u"folderButton"_s).right() + 1 + 8, footer.right() + 1);
}

TEST_F(WindowState, SettingsThatCouldNotBeReadAreToldOnce)
{
    QDir().mkpath(QFileInfo(settingsPath()).path());
    test::writeFile(settingsPath(), "{ garbled");
    openWindow();
    ASSERT_TRUE(waitFor([this] { return sheet() != nullptr; }));
    EXPECT_EQ(sheet()->text().message, u"Your settings could not be read"_s);
    EXPECT_TRUE(sheet()->text().detail.contains(u"“~/.config/tuppi-transcriber/settings.json.garbled-"_s))
        << sheet()->text().detail.toStdString();
    sheet()->answer(0);
    ASSERT_TRUE(sheetCloses());
    window()->close();
    destroy();
    openWindow();
    settle();
    EXPECT_EQ(sheet(), nullptr);
}

TEST_F(WindowState, FrameIsRememberedBetweenTwoWindows)
{
    openWindow();
    window()->setGeometry(11, 23, 731, 477);
    ASSERT_TRUE(waitFor([this] { return window()->geometry() == QRect(11, 23, 731, 477); }));
    window()->close();
    destroy();
    openWindow();
    EXPECT_EQ(window()->geometry(), QRect(11, 23, 731, 477));
}

TEST_F(WindowState, FrameIsRememberedWithoutClosingFirst)
{
    openWindow();
    window()->setGeometry(11, 23, 731, 477);
    QMetaObject::invokeMethod(qApp, "aboutToQuit");
    destroy();
    openWindow();
    EXPECT_EQ(window()->geometry(), QRect(11, 23, 731, 477));
}

TEST_F(WindowState, FrameIsRememberedOnceItRests)
{
    openWindow();
    window()->setGeometry(11, 23, 731, 477);
    const auto stored = [this] {
        return QFile::exists(settingsPath()) ? settings().value(u"windowFrame"_s).toString() : QString();
    };
    EXPECT_TRUE(waitFor([&] { return stored() == QString::fromLatin1(window()->saveGeometry().toBase64()); }));
}

TEST_F(WindowState, ABadFrameIsNoFrame)
{
    for (const QByteArray &frame :
         {QByteArray("7"), QByteArray("\"bm90IGEgZnJhbWU=\""), QByteArray("null")}) {
        QDir().mkpath(QFileInfo(settingsPath()).path());
        test::writeFile(settingsPath(), "{\"windowFrame\":" + frame + "}");
        openWindow();
        EXPECT_EQ(window()->centralWidget()->size(), QSize(780, 500));
        EXPECT_TRUE(window()->screen()->availableGeometry().contains(window()->geometry().center()));
        destroy();
    }
}

TEST_F(WindowState, ClosedWindowGoesOnAndComesBack)
{
    openWindow();
    window()->close();
    EXPECT_FALSE(window()->isVisible());
    show({job(u"a"_s, u"A"_s, u"ready"_s)});
    EXPECT_FALSE(window()->isVisible()) << "a poll does not bring it back";
    m_app->applicationShouldHandleReopen({});
    EXPECT_TRUE(window()->isVisible());
    EXPECT_EQ(shown(u"a"_s).title, u"A"_s);
    EXPECT_EQ(summary(), u"1 transcript"_s);
}

TEST_F(WindowState, EmptyStateShowsOnlyWhenItIsKnownThatThereIsNothing)
{
    m_engine.answerCall(u"history"_s, 1, Answer{"[]"}.heldAt("history"));
    openEarly();
    EXPECT_FALSE(isEmptyStateShown());
    EXPECT_FALSE(dropArea()->showsCard());
    EXPECT_EQ(summary(), u"Preparing…"_s);
    m_engine.openGate("history");
    ASSERT_TRUE(waitFor([this] { return isEmptyStateShown(); }));
    EXPECT_TRUE(dropArea()->showsCard());
    EXPECT_FALSE(list()->isVisible());
    EXPECT_EQ(summary(), u"No transcriptions"_s);
    show({job(u"a"_s, u"A"_s, u"failed"_s)});
    EXPECT_FALSE(isEmptyStateShown());
    EXPECT_FALSE(dropArea()->showsCard());
    EXPECT_TRUE(list()->isVisible());
    EXPECT_EQ(summary(), u"0 transcripts"_s);
    show({});
    EXPECT_TRUE(isEmptyStateShown());
    EXPECT_TRUE(dropArea()->showsCard());
    EXPECT_FALSE(list()->isVisible());
}

TEST_F(WindowState, EmptyStateMakesNoButtonLookChosen)
{
    openWindow();
    ASSERT_TRUE(isEmptyStateShown());
    EXPECT_EQ(qobject_cast<QAbstractButton *>(QApplication::focusWidget()), nullptr)
        << qPrintable(test::focusName());
    show({job(u"a"_s, u"A"_s, u"ready"_s)});
    test::press(Qt::Key_Down);
    EXPECT_EQ(list()->selectedKey(), u"a"_s) << "the keyboard is in the list as soon as there is one";
}

TEST_F(WindowState, BrokenEngineIsSaid)
{
    m_engine.uninstall();
    openEarly();
    ASSERT_TRUE(waitFor([this] { return jobs().engineBroken && !jobs().polling; }));
    EXPECT_EQ(summary(), u"Tuppi's engine could not be found — please run the installer again."_s);
    EXPECT_FALSE(isEmptyStateShown());
}

TEST_F(WindowState, ARowWithoutATitle)
{
    m_engine.answerHistory(R"([{"id":"a","status":"ready"},{"id":"b","status":"queued","title":null}])");
    openWindow();
    const RowView *view = row(u"a"_s);
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(view->title()->text(), u"Recording"_s);
    EXPECT_EQ(view->detail()->text(), u"Done ·  · 1 min"_s);
    EXPECT_EQ(view->accessibleName(), u". Done ·  · 1 min"_s);
    EXPECT_EQ(rowButton(u"a"_s, u"openRowViewer"_s)->accessibleName(), u"Open — "_s);
    EXPECT_EQ(rowButton(u"a"_s, u"removeRow"_s)->accessibleName(), u"Remove… — "_s);
    EXPECT_EQ(shown(u"b"_s).title, u"Recording"_s);
}

TEST_F(WindowState, FailureSheetHasItsTextsAndOnlyAnOk)
{
    m_engine.answerHistory(test::historyOf({job(u"a"_s, u"A"_s, u"transcribing"_s)}));
    m_engine.answer(u"pause"_s, Answer::failure(1, "noise\nError: The disk is full\n"));
    openWindow();
    click(rowButton(u"a"_s, u"pauseRow"_s));
    ASSERT_TRUE(waitFor([this] { return sheet() != nullptr; }));
    EXPECT_EQ(sheet()->text().message, u"Could not pause"_s);
    EXPECT_EQ(sheet()->text().detail, u"The disk is full"_s);
    EXPECT_EQ(sheet()->windowModality(), Qt::WindowModal);
    QStringList texts;
    for (const WrapLabel *label : sheet()->findChildren<WrapLabel *>())
        texts.append(label->isVisible() ? label->text() : QString());
    EXPECT_EQ(texts, (QStringList{u"Could not pause"_s, u"The disk is full"_s}));
    EXPECT_EQ(sheetButtons(), QStringList{u"OK"_s});
    ASSERT_TRUE(waitFor([this] { return sheet()->isActiveWindow(); }));
    test::press(Qt::Key_Return);
    ASSERT_TRUE(sheetCloses());
    EXPECT_TRUE(window()->isVisible());
}

TEST_F(WindowState, ALongSummaryEndsInAnEllipsisAndIsWholeInItsTip)
{
    openWindow();
    const QString text = QString(u"Tuppi is working on <b>another</b> file. "_s).repeated(20).trimmed();
    m_app->flash(text);
    const QRect label = placeOf(u"statusLabel"_s);
    EXPECT_GE(label.left(), placeOf(u"addButton"_s).right() + 1 + 10);
    EXPECT_LE(label.right() + 1 + 10, placeOf(u"soundButton"_s).left());
    EXPECT_TRUE(summaryLabel()->shownText().endsWith(u'…'));
    EXPECT_EQ(summaryLabel()->accessibleName(), text);
    QHelpEvent help(QEvent::ToolTip, {5, 5}, summaryLabel()->mapToGlobal(QPoint(5, 5)));
    QCoreApplication::sendEvent(summaryLabel(), &help);
    EXPECT_TRUE(QToolTip::isVisible());
    QString tip = QToolTip::text();
    EXPECT_TRUE(tip.contains(u"&lt;b&gt;another"_s) || tip.contains(u"<b>another</b>"_s))
        << tip.toStdString();
    QToolTip::hideText();

    m_app->flash(u"short"_s);
    const int middle = window()->width() / 2;
    EXPECT_LE(qAbs(placeOf(u"statusLabel"_s).center().x() - middle), 1);
    EXPECT_EQ(summaryLabel()->shownText(), u"short"_s);
}

TEST_F(WindowState, ReducedMotionStopsTheBarsAndIsFollowed)
{
    m_engine.answerHistory(test::historyOf({job(u"a"_s, u"A"_s, u"queued"_s)}));
    const QString wishes = m_engine.home() + u"/.config/kdeglobals"_s;
    QDir().mkpath(m_engine.home() + u"/.config"_s);
    test::writeFile(wishes, "[KDE]\nAnimationDurationFactor=0\n");
    openWindow();
    const SkyBar *bar = row(u"a"_s)->bar();
    ASSERT_TRUE(bar->isSweeping());
    const QRectF still = bar->fillRect();
    EXPECT_NEAR(still.center().x(), bar->width() / 2.0, 1);
    test::replaceFile(wishes, "[KDE]\nAnimationDurationFactor=1\n");
    EXPECT_TRUE(waitFor([&] { return bar->fillRect() != still; }));
    test::replaceFile(wishes, "[KDE]\nAnimationDurationFactor=0\n");
    EXPECT_TRUE(waitFor([&] { return bar->fillRect() == still; }));
}

class Motion : public testing::Test
{
protected:
    void SetUp() override
    {
        show({job(u"a"_s, u"A"_s, u"queued"_s), job(u"b"_s, u"B"_s, u"failed"_s)});
        m_window.setEmpty(false);
        m_window.bringForward();
        ASSERT_TRUE(waitFor([this] { return isMoving(); }));
    }
    void show(const QJsonArray &jobs)
    {
        ListContent content;
        content.rows.jobs = ArrangeHistory(jobs).listed;
        m_window.setContent(content);
    }
    bool isMoving() const
    {
        return m_stage.sweep.isRunning() && m_stage.mascots.isRunning(u"oops"_s) && isListening();
    }
    bool isListening() const { return m_stage.mascots.isRunning(u"listening"_s); }
    bool isStill() const
    {
        return !m_stage.sweep.isRunning() && !m_stage.mascots.isRunning(u"oops"_s) && !isListening();
    }

    Stage m_stage;
    MainWindow m_window{m_stage};
};

TEST_F(Motion, StopsWhenThePersonWantsLess)
{
    m_stage.motion.setReducedMotion(true);
    EXPECT_TRUE(isStill());
    m_stage.motion.setReducedMotion(false);
    EXPECT_TRUE(waitFor([this] { return isMoving(); }));
}

TEST_F(Motion, StopsWhileTheWindowIsHiddenOrMinimised)
{
    m_window.close();
    EXPECT_TRUE(waitFor([this] { return isStill(); }));
    m_window.bringForward();
    EXPECT_TRUE(waitFor([this] { return isMoving(); }));
    m_window.showMinimized();
    EXPECT_TRUE(waitFor([this] { return isStill(); }));
    m_window.bringForward();
    EXPECT_TRUE(waitFor([this] { return isMoving(); }));
}

TEST_F(Motion, StopsWhenNothingThatMovesIsLeft)
{
    show({job(u"a"_s, u"A"_s, u"queued"_s, true), job(u"b"_s, u"B"_s, u"cancelled"_s)});
    EXPECT_TRUE(waitFor([this] { return isStill(); }));
}

} // namespace
