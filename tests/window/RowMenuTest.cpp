// The context menu of the list.

#include "window/WindowTest.h"

#include "actions/Menus.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QFileDialog>
#include <QMenu>
#include <QWindow>

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::click;
using test::clickAt;
using test::job;
using test::press;
using test::waitFor;

namespace {

class OnTheRowMenu : public test::WindowTest
{
protected:
    void openWith(const QList<QJsonObject> &jobs)
    {
        m_engine.answerHistory(test::historyOf(jobs));
        ASSERT_NO_FATAL_FAILURE(openWindow());
        QObject::connect(
            window(), &MainWindow::rowCommand, window(),
            [this](const QString &key, const QString &action) { m_commands.append(key + u'.' + action); });
    }
    static QMenu *menu() { return qobject_cast<QMenu *>(QApplication::activePopupWidget()); }
    static QStringList titles()
    {
        QStringList titles;
        for (const QAction *action : menu()->actions())
            titles.append(action->text());
        return titles;
    }
    /// Those that can be used; closes the menu.
    static QStringList usable()
    {
        QStringList names;
        for (const QAction *action : menu()->actions()) {
            if (action->isEnabled())
                names.append(action->objectName());
        }
        menu()->close();
        return names;
    }
    void clickGround(Qt::MouseButton button)
    {
        const int below = int(list()->content().size()) * Metrics::rowHeight + 20;
        clickAt(list()->viewport(), {40, below}, button);
    }

    QStringList m_commands;
};

const QStringList onReady{u"openRowViewer"_s, u"openRowText"_s,  u"copyRowText"_s, u"showRowInFinder"_s,
                          u"saveRowText"_s,   u"shareRowText"_s, u"renameRow"_s,   u"removeRow"_s};

TEST_F(OnTheRowMenu, TitlesStandInTheirOrder)
{
    openWith({job(u"a"_s, u"A"_s, u"ready"_s)});
    click(row(u"a"_s)->title(), Qt::RightButton);
    ASSERT_NE(menu(), nullptr);
    EXPECT_EQ(titles(),
              (QStringList{u"Open Transcript"_s, u"Open Summary and Text"_s, u"Copy Text"_s,
                           u"Show in Finder"_s, u"Save as Text…"_s, u"Share…"_s, u"Rename…"_s, u"Try Again"_s,
                           u"Pause"_s, u"Resume"_s, u"Cancel Transcription…"_s, u"Remove…"_s}));
    menu()->close();
}

struct Case
{
    const char *name;
    QString status;
    bool paused;
    QStringList usable;
};

class OnTheRowMenuOf : public OnTheRowMenu, public testing::WithParamInterface<Case>
{
};

TEST_P(OnTheRowMenuOf, OnlyWhatMakesSenseCanBeUsed)
{
    openWith({job(u"a"_s, u"A"_s, GetParam().status, GetParam().paused), job(u"b"_s, u"B"_s, u"ready"_s)});
    click(row(u"a"_s)->title(), Qt::RightButton);
    ASSERT_NE(menu(), nullptr);
    EXPECT_EQ(usable(), GetParam().usable);
}

const QStringList onFailed{u"showRowInFinder"_s, u"renameRow"_s, u"retryRow"_s, u"removeRow"_s};
const QStringList onWork{u"showRowInFinder"_s, u"pauseRow"_s, u"cancelRow"_s};

INSTANTIATE_TEST_SUITE_P(
    Statuses, OnTheRowMenuOf,
    testing::Values(
        Case{"ready", u"ready"_s, false, onReady}, Case{"failed", u"failed"_s, false, onFailed},
        Case{"cancelled", u"cancelled"_s, false, onFailed}, Case{"queued", u"queued"_s, false, onWork},
        Case{"transcribing", u"transcribing"_s, false, onWork},
        Case{"paused", u"transcribing"_s, true, {u"showRowInFinder"_s, u"resumeRow"_s, u"cancelRow"_s}},
        Case{"unknown", u"elsewhere"_s, false, {u"showRowInFinder"_s, u"renameRow"_s, u"removeRow"_s}}),
    test::caseName);

TEST_F(OnTheRowMenu, AWaitingFileAllowsNothing)
{
    openWith({job(u"a"_s, u"A"_s, u"transcribing"_s)});
    const QString file = m_engine.recording(u"talk.wav"_s);
    m_app->enqueue({file}, m_choices);
    click(row(u"wait:"_s + file)->title(), Qt::RightButton);
    ASSERT_NE(menu(), nullptr);
    EXPECT_EQ(usable(), QStringList());
}

TEST_F(OnTheRowMenu, OnEmptyGroundItIsTheSelectedRows)
{
    openWith({job(u"a"_s, u"A"_s, u"transcribing"_s), job(u"b"_s, u"B"_s, u"ready"_s)});
    clickGround(Qt::RightButton);
    ASSERT_NE(menu(), nullptr);
    EXPECT_EQ(usable(), QStringList());
    click(row(u"b"_s)->title());
    clickGround(Qt::RightButton);
    ASSERT_NE(menu(), nullptr);
    EXPECT_EQ(usable(), onReady);
}

TEST_F(OnTheRowMenu, ItActsOnItsRowWhateverMovesMeanwhile)
{
    openWith({job(u"a"_s, u"A"_s, u"transcribing"_s), job(u"b"_s, u"B"_s, u"ready"_s)});
    click(row(u"b"_s)->title());
    click(row(u"a"_s)->title(), Qt::RightButton);
    ASSERT_NE(menu(), nullptr);
    show({job(u"c"_s, u"C"_s, u"transcribing"_s), job(u"a"_s, u"A"_s, u"transcribing"_s),
          job(u"b"_s, u"B"_s, u"ready"_s)});
    ASSERT_NE(menu(), nullptr) << "a reload leaves the menu open";
    menu()->findChild<QAction *>(u"pauseRow"_s)->trigger();
    EXPECT_EQ(m_commands, QStringList{u"a.pauseRow"_s});
    ASSERT_TRUE(waitFor([this] { return m_engine.count(u"pause"_s) == 1; }));
    EXPECT_EQ(m_engine.calls(u"pause"_s), QList<QStringList>({{u"pause"_s, u"a"_s}}));
    EXPECT_TRUE(waitFor([this] { return menu() == nullptr; })) << "what was chosen ends the menu";
}

TEST_F(OnTheRowMenu, EveryItemSpeaksForItself)
{
    openWith({job(u"a"_s, u"A"_s, u"ready"_s)});
    QStringList expected;
    for (const MenuItem &item : RowMenu()) {
        click(row(u"a"_s)->title(), Qt::RightButton);
        ASSERT_NE(menu(), nullptr);
        QAction *action = menu()->findChild<QAction *>(item.action);
        ASSERT_NE(action, nullptr) << qPrintable(item.action);
        if (action->isEnabled()) {
            action->trigger();
            expected.append(u"a."_s + item.action);
        }
        if (menu())
            menu()->close();
        if (sheet())
            sheet()->answer(sheet()->text().escapeButton);
        ASSERT_TRUE(sheetCloses());
        for (QFileDialog *dialog : window()->findChildren<QFileDialog *>())
            delete dialog;
    }
    EXPECT_EQ(m_commands, expected);
    EXPECT_EQ(expected.size(), onReady.size());
}

TEST_F(OnTheRowMenu, TheMenuKeyOpensItForTheSelectedRow)
{
    openWith({job(u"a"_s, u"A"_s, u"transcribing"_s), job(u"b"_s, u"B"_s, u"ready"_s)});
    test::tabTo(u"table"_s);
    list()->selectRow(1);
    QContextMenuEvent key(QContextMenuEvent::Keyboard, {}, {});
    QCoreApplication::sendEvent(window()->windowHandle(), &key);
    ASSERT_NE(menu(), nullptr);
    const QRect selected(row(u"b"_s)->mapToGlobal(QPoint()), row(u"b"_s)->size());
    EXPECT_TRUE(selected.contains(menu()->pos())) << "it opens at the row";
    EXPECT_EQ(usable(), onReady);
}

TEST_F(OnTheRowMenu, TheMenuKeyOnAButtonOpensTheMenuOfItsRow)
{
    openWith({job(u"a"_s, u"A"_s, u"transcribing"_s), job(u"b"_s, u"B"_s, u"ready"_s)});
    rowButton(u"a"_s, u"cancelRow"_s)->setFocus(Qt::TabFocusReason);
    QContextMenuEvent key(QContextMenuEvent::Keyboard, {}, {});
    QCoreApplication::sendEvent(window()->windowHandle(), &key);
    ASSERT_NE(menu(), nullptr);
    EXPECT_EQ(usable(), onWork);
}

} // namespace
