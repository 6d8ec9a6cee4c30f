// Which windows are open, what waits for them, and what a quit waits for.

#include "viewer/ResultWindow.h"
#include "viewer/ViewerState.h"
#include "viewer/WebView.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QEvent>
#include <QPointer>

#include <utility>

using namespace Qt::StringLiterals;
using namespace tuppi;

namespace {

/// A viewer's window whose test says when all is saved.
class HeldWindow : public ResultWindow
{
public:
    explicit HeldWindow(const QString &callDir)
        : ResultWindow({.callDir = callDir, .page = callDir + u"/viewer.html"_s, .title = u"Talk"_s})
    {
    }

    void whenSaved(std::function<void(bool complete)> then) override { m_whenSaved.append(std::move(then)); }
    bool stay() override { return std::exchange(m_stays, false); }

    void save(bool complete = true)
    {
        const QList<std::function<void(bool complete)>> all = std::exchange(m_whenSaved, {});
        for (const std::function<void(bool complete)> &then : all)
            then(complete);
    }

protected:
    void dispose() override { m_stays = true; }
    void setZoom(double) override { }

private:
    QList<std::function<void(bool complete)>> m_whenSaved;
    bool m_stays = false;
};

/// Counts the calls that are made of the application later: a quit is one, and does nothing where no loop runs.
class LaterCalls : public QObject
{
public:
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::MetaCall;
        return false;
    }

    int count = 0;
};

class ViewerStates : public testing::Test
{
protected:
    HeldWindow *open(const QString &callDir)
    {
        auto *window = new HeldWindow(callDir);
        m_state.resultWindows.insert(window->plan().key(), window);
        QObject::connect(window, &ResultWindow::closing, qApp, [this, window] { m_state.forget(window); });
        window->show();
        return window;
    }

    /// True where it was accepted.
    bool quit()
    {
        QEvent event(QEvent::Quit);
        m_state.eventFilter(qApp, &event);
        return event.isAccepted();
    }

    static int quitsAfterTheEndOf(ResultWindow *window)
    {
        QCoreApplication::sendPostedEvents();
        delete window;
        LaterCalls calls;
        qApp->installEventFilter(&calls);
        QCoreApplication::sendPostedEvents(qApp);
        return calls.count;
    }

    ViewerState m_state;
};

TEST_F(ViewerStates, AWindowThatClosesIsTakenBack)
{
    HeldWindow *window = open(u"/a"_s);
    const QString key = window->plan().key();
    EXPECT_EQ(m_state.window(key), window);
    window->close();
    EXPECT_TRUE(m_state.resultWindows.isEmpty());
    EXPECT_EQ(m_state.closing, QList<ResultWindow *>{window});
    EXPECT_EQ(m_state.window(u"other"_s), nullptr);
    EXPECT_EQ(m_state.window(key), window);
    EXPECT_EQ(m_state.resultWindows.value(key), window);
    EXPECT_TRUE(m_state.closing.isEmpty());
}

TEST_F(ViewerStates, AWindowThatIsTooFarGoneIsNot)
{
    HeldWindow *window = open(u"/a"_s);
    window->close();
    window->stay();
    EXPECT_EQ(m_state.window(window->plan().key()), nullptr);
}

TEST_F(ViewerStates, AWindowThatShowsWhatIsNoMoreIsNotTakenBack)
{
    for (const bool closedBefore : {false, true}) {
        SCOPED_TRACE(closedBefore);
        HeldWindow *a = open(u"/a"_s);
        HeldWindow *longer = open(u"/ab"_s);
        if (closedBefore)
            a->close();
        m_state.closeForGood(u"/a"_s);
        EXPECT_FALSE(a->isVisible());
        EXPECT_TRUE(longer->isVisible());
        EXPECT_EQ(m_state.window(a->plan().key()), nullptr);
        EXPECT_EQ(m_state.closing, QList<ResultWindow *>{a});
        bool done = false;
        m_state.whenSaved({u"/a"_s}, [&](bool) { done = true; });
        EXPECT_FALSE(done) << "what it still saves is waited for";
        a->save();
        EXPECT_TRUE(done);
        longer->close();
        qDeleteAll(QList<HeldWindow *>{a, longer});
    }
}

TEST_F(ViewerStates, WhatWaitsForAFolderWaitsForItsWindowOnly)
{
    QStringList done;
    m_state.whenSaved({u"/a"_s}, [&](bool) { done.append(u"without a window"_s); });
    HeldWindow *a = open(u"/a"_s);
    HeldWindow *b = open(u"/b"_s);
    m_state.whenSaved({u"/a"_s}, [&](bool) { done.append(u"open"_s); });
    b->save();
    EXPECT_EQ(done, QStringList{u"without a window"_s});
    a->save();
    a->close();
    m_state.whenSaved({u"/a"_s}, [&](bool) { done.append(u"closed"_s); });
    EXPECT_EQ(done, (QStringList{u"without a window"_s, u"open"_s}));
    a->save();
    EXPECT_EQ(done, (QStringList{u"without a window"_s, u"open"_s, u"closed"_s}));
}

TEST_F(ViewerStates, AllWindowsOfTheFoldersAreWaitedFor)
{
    for (const bool second : {true, false}) {
        SCOPED_TRACE(second);
        HeldWindow *gone = open(u"/a"_s);
        gone->close();
        gone->stay();
        HeldWindow *a = open(u"/a"_s);
        HeldWindow *b = open(u"/b"_s);
        HeldWindow *c = open(u"/c"_s);
        QList<bool> done;
        m_state.whenSaved({u"/a"_s, u"/b"_s}, [&](bool complete) { done.append(complete); });
        a->save();
        b->save(second);
        c->save();
        EXPECT_EQ(done, QList<bool>());
        gone->save();
        EXPECT_EQ(done, QList<bool>{second});
        for (HeldWindow *window : {a, b, c})
            window->close();
        qDeleteAll(QList<HeldWindow *>{gone, a, b, c});
    }
}

TEST_F(ViewerStates, AQuitClosesTheWindowsAndWaitsForTheLastOne)
{
    EXPECT_TRUE(quit());
    HeldWindow *a = open(u"/a"_s);
    HeldWindow *b = open(u"/b"_s);
    EXPECT_FALSE(quit());
    EXPECT_FALSE(a->isVisible() || b->isVisible());
    delete a;
    EXPECT_TRUE(m_state.quitsThen);
    EXPECT_FALSE(quit());
    delete b;
    EXPECT_TRUE(quit());
}

TEST_F(ViewerStates, AQuitComesWhenTheLastWindowIsGone)
{
    HeldWindow *a = open(u"/a"_s);
    EXPECT_FALSE(quit());
    EXPECT_EQ(quitsAfterTheEndOf(a), 1);
}

TEST_F(ViewerStates, AQuitCalledOffDoesNotCome)
{
    HeldWindow *a = open(u"/a"_s);
    m_state.relaunches = true;
    EXPECT_FALSE(quit());
    EXPECT_TRUE(m_state.relaunches);
    m_state.callQuitOff();
    EXPECT_FALSE(m_state.relaunches);
    EXPECT_EQ(quitsAfterTheEndOf(a), 0);
}

TEST_F(ViewerStates, AWindowTakenBackCallsTheQuitOff)
{
    HeldWindow *a = open(u"/a"_s);
    EXPECT_FALSE(quit());
    EXPECT_EQ(m_state.window(a->plan().key()), a);
    a->show();
    a->close();
    EXPECT_EQ(quitsAfterTheEndOf(a), 0);
}

TEST_F(ViewerStates, AWindowTakenBackIsWaitedForOnce)
{
    HeldWindow *a = open(u"/a"_s);
    a->close();
    EXPECT_EQ(m_state.window(a->plan().key()), a);
    a->show();
    EXPECT_FALSE(quit());
    EXPECT_EQ(quitsAfterTheEndOf(a), 1);
}

TEST_F(ViewerStates, TheWindowsGoWithIt)
{
    QPointer<HeldWindow> opened, closed;
    {
        ViewerState state;
        opened = new HeldWindow(u"/a"_s);
        closed = new HeldWindow(u"/b"_s);
        closed->close();
    }
    EXPECT_TRUE(opened.isNull());
    EXPECT_TRUE(closed.isNull());
}

} // namespace
