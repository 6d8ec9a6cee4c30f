// A viewer's window between its page and the engine, with a page that says what the test wants.

#include "viewer/ViewerWindow.h"

#include "ui/Sheet.h"
#include "viewer/PageScripts.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QPointer>
#include <QTimer>

#include <utility>

using namespace Qt::StringLiterals;
using namespace tuppi;

namespace {

class ScriptedPage : public WebView
{
public:
    using WebView::WebView;

    void load() override { ++loads; }
    void run(const QString &script) override { scripts.append(script); }
    void ask(const QString &script, std::function<void(const QVariant &)> answered) override
    {
        asked.append(script);
        questions.append(std::move(answered));
    }
    void unload() override { unloads = true; }
    void perform(Command) override { }
    void setZoom(double) override { }

    void post(const QString &text) { onMessage({{u"text"_s, text}}); }
    void sayUnsaved(const QStringList &texts, const QStringList &failed = {})
    {
        say(QVariantMap{{u"unsaved"_s, texts}, {u"failed"_s, failed}});
    }
    void sayNothing() { say({}); }
    void say(const QVariant &said)
    {
        const QList<std::function<void(const QVariant &)>> all = std::exchange(questions, {});
        for (const std::function<void(const QVariant &)> &answered : all)
            answered(said);
    }

    int loads = 0;
    QStringList scripts;
    QStringList asked;
    QList<std::function<void(const QVariant &)>> questions;
    bool unloads = false;
};

struct ScriptedPages : WebViews
{
    WebView *make(const WebViewSetup &, QWidget *parent) override { return page = new ScriptedPage(parent); }

    ScriptedPage *page = nullptr;
};

class ViewerWindows : public testing::Test
{
protected:
    ViewerWindows()
    {
        QObject::connect(m_window, &ViewerWindow::messagePosted, m_window,
                         [this](const QJsonObject &, int page) { m_asked.append(page); });
        QObject::connect(m_window, &ViewerWindow::correctionsLost, m_window,
                         [this](const QString &reason, const QStringList &written) {
                             m_told.append(reason + u'|' + written.join(u'|'));
                         });
        m_window->show();
    }

    ~ViewerWindows() override { delete m_window.data(); }

    ScriptedPage *page() { return m_pages.page; }

    /// What the engine says to the first message that has no answer yet.
    void answer(const QString &written, const QString &failure = {})
    {
        m_window->answer(m_asked.takeFirst(), {.answer = {u"tuppiSaved"_s, {}}, .failure = failure}, written);
    }

    Sheet *sheet() const { return m_window->findChild<Sheet *>(); }

    void letGo() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

    /// What is waited for does not come.
    void losePatience() { lose(u"patience"_s); }

    void lose(const QString &timer)
    {
        auto *patience = m_window->findChild<QTimer *>(timer);
        ASSERT_TRUE(patience->isActive());
        patience->setInterval(0);
        QCoreApplication::processEvents();
    }

    ScriptedPages m_pages;
    QPointer<ViewerWindow> m_window =
        new ViewerWindow({.callDir = u"/a"_s, .page = u"/a/viewer.html"_s, .title = u"Talk"_s}, m_pages, {});
    QList<int> m_asked;
    QStringList m_told;
    const QString m_answerScript = u"window.tuppiSaved.apply(null, [])"_s;
};

TEST_F(ViewerWindows, APageTellsOfAFailureItself)
{
    page()->post(u"one"_s);
    answer(u"one"_s, u"disk full"_s);
    EXPECT_EQ(page()->scripts, QStringList{m_answerScript});
    EXPECT_EQ(m_told, QStringList());
}

TEST_F(ViewerWindows, AFailureAfterACrashIsTold)
{
    page()->post(u"one"_s);
    page()->post(u"two"_s);
    page()->onCrash();
    ASSERT_NE(sheet(), nullptr);
    answer(u"one"_s, u"disk full"_s);
    EXPECT_EQ(m_told, QStringList{u"disk full|one"_s});
    sheet()->answer(0);
    EXPECT_EQ(page()->loads, 1) << "the second, a split perhaps, is still with the engine";
    answer(u"two"_s, u"busy"_s);
    EXPECT_EQ(m_told, (QStringList{u"disk full|one"_s, u"busy|two"_s}));
    EXPECT_EQ(page()->loads, 2);
    page()->post(u"three"_s);
    answer(u"three"_s, u"busy"_s);
    EXPECT_EQ(m_told.size(), 2);
    EXPECT_EQ(page()->scripts, QStringList{m_answerScript});
}

TEST_F(ViewerWindows, WhatACrashedPageHadNotPostedIsTold)
{
    for (const bool closed : {false, true}) {
        SCOPED_TRACE(closed);
        m_told.clear();
        QList<bool> done;
        m_window->whenSaved([&](bool complete) { done.append(complete); });
        if (closed)
            m_window->close();
        page()->post(u"one"_s);
        page()->sayUnsaved({u"one"_s, u"two"_s});
        page()->onCrash();
        EXPECT_EQ(done, QList<bool>()) << "the first is with the engine";
        answer(u"one"_s);
        EXPECT_EQ(done, QList<bool>{false}) << "the second is in no file";
        EXPECT_EQ(m_told, QStringList{u"Could not save this change|two"_s});
        if (!closed)
            sheet()->answer(0);
    }
    letGo();
    EXPECT_TRUE(m_window.isNull());
}

TEST_F(ViewerWindows, AnOpenEditIsEndedByTheFirstQuestionAlone)
{
    page()->post(u"one"_s);
    answer(u"one"_s, u"disk full"_s);
    EXPECT_EQ(page()->asked, QStringList{FailedScript()});
    page()->sayUnsaved({}, {u"one"_s});
    page()->post(u"two"_s);
    answer(u"two"_s);
    EXPECT_EQ(page()->asked.size(), 2) << "as long as something is offered";
    page()->sayUnsaved({});
    page()->asked.clear();
    page()->post(u"three"_s);
    answer(u"three"_s);
    EXPECT_EQ(page()->asked, QStringList());

    page()->post(u"four"_s);
    m_window->close();
    page()->sayUnsaved({u"four"_s});
    EXPECT_TRUE(m_window->stay());
    answer(u"four"_s);
    EXPECT_EQ(page()->asked, (QStringList{UnsavedScript(true), UnsavedScript(false)}));
}

TEST_F(ViewerWindows, ACrashedPageThatIsTakenBackIsLoadedWhenTheEngineHasAnswered)
{
    page()->post(u"one"_s);
    page()->onCrash();
    sheet()->answer(1);
    EXPECT_TRUE(m_window->stay());
    EXPECT_EQ(page()->loads, 1);
    answer(u"one"_s);
    EXPECT_EQ(page()->loads, 2);
}

TEST_F(ViewerWindows, WhatACrashedPageStillOfferedIsTold)
{
    const auto fail = [this](const QString &text) {
        page()->post(text);
        answer(text, u"disk full"_s);
    };
    fail(u"one"_s);
    page()->sayUnsaved({}, {u"one"_s});
    fail(u"two"_s);
    page()->sayUnsaved({}, {u"one"_s, u"two"_s});
    page()->post(u"one"_s); // tried again
    answer(u"one"_s);
    fail(u"three"_s);
    page()->sayUnsaved({}, {u"two"_s, u"three"_s});
    page()->post(u"three"_s);
    page()->onCrash();
    EXPECT_EQ(m_told, QStringList{u"Could not save this change|two"_s});
    answer(u"three"_s);
    EXPECT_EQ(m_told.size(), 1);

    sheet()->answer(0);
    ASSERT_EQ(page()->loads, 2);
    page()->onCrash();
    EXPECT_EQ(m_told.size(), 1) << "the page was loaded anew, and offered nothing";
}

TEST_F(ViewerWindows, WhatWasOfferedIsToldWhereThePageHangsAtItsEnd)
{
    page()->onLoaded();
    page()->post(u"one"_s);
    answer(u"one"_s, u"disk full"_s);
    page()->sayUnsaved({}, {u"one"_s});
    m_window->close();
    losePatience();
    EXPECT_EQ(m_told, QStringList{u"Could not save this change|one"_s});
}

TEST_F(ViewerWindows, APageThatCrashesWhileItIsAskedHasSaidNothing)
{
    page()->post(u"one"_s);
    answer(u"one"_s, u"disk full"_s);
    page()->sayUnsaved({}, {u"one"_s});
    m_window->close();
    page()->sayNothing();
    EXPECT_FALSE(page()->unloads);
    page()->onCrash();
    EXPECT_EQ(m_told, QStringList{u"Could not save this change|one"_s});
    letGo();
    EXPECT_TRUE(m_window.isNull());
}

TEST_F(ViewerWindows, WhatFailedAndIsStillOfferedIsToldWhenThePageGoes)
{
    m_window->close();
    page()->post(u"one"_s);
    page()->sayUnsaved({u"one"_s}, {u"zero"_s});
    answer(u"one"_s, u"disk full"_s);
    page()->sayUnsaved({}, {u"zero"_s, u"one"_s});
    EXPECT_EQ(m_told, QStringList{u"Could not save this change|one|zero"_s}) << "each once";
    page()->onUnloaded();
    letGo();
    EXPECT_TRUE(m_window.isNull());
}

TEST_F(ViewerWindows, WhatFailedStaysWithAPageThatIsTakenBack)
{
    m_window->close();
    page()->post(u"one"_s);
    page()->sayUnsaved({u"one"_s}, {u"zero"_s});
    EXPECT_TRUE(m_window->stay());
    answer(u"one"_s);
    page()->sayUnsaved({}, {u"zero"_s});
    EXPECT_EQ(m_told, QStringList());
    EXPECT_FALSE(page()->unloads);
}

TEST_F(ViewerWindows, WhatTheEngineWasLateToSaveIsNotTakenForLost)
{
    QList<bool> done;
    m_window->whenSaved([&](bool complete) { done.append(complete); });
    page()->post(u"one"_s);
    page()->sayUnsaved({u"one"_s});
    losePatience();
    EXPECT_EQ(done, QList<bool>{false});
    answer(u"one"_s);
    page()->onCrash();
    EXPECT_EQ(m_told, QStringList());
}

TEST_F(ViewerWindows, ItIsSaidWhetherAllIsSaved)
{
    QList<bool> done;
    const auto note = [&](bool complete) { done.append(complete); };
    page()->onLoaded();
    m_window->whenSaved(note);
    page()->sayUnsaved({});
    EXPECT_EQ(done, QList<bool>{true});
    m_window->whenSaved(note);
    losePatience(); // with a page that hangs
    EXPECT_EQ(done, (QList<bool>{true, false}));
}

TEST_F(ViewerWindows, WhatFailedWhileItWasWaitedForIsNotSaved)
{
    QList<bool> done;
    const auto note = [&](bool complete) { done.append(complete); };
    page()->post(u"one"_s);
    m_window->whenSaved(note);
    page()->sayUnsaved({u"one"_s, u"two"_s});
    answer(u"one"_s, u"busy"_s);
    page()->post(u"two"_s);
    page()->sayUnsaved({u"two"_s});
    answer(u"two"_s);
    page()->sayUnsaved({}, {u"one"_s});
    EXPECT_EQ(done, QList<bool>{false});
    m_window->whenSaved(note);
    page()->sayUnsaved({}, {u"one"_s});
    EXPECT_EQ(done, (QList<bool>{false, true})) << "the page told of it long ago";
}

TEST_F(ViewerWindows, AFailureWhileThePageEndsIsToldAlsoWhereThePageHangs)
{
    m_window->close();
    page()->sayUnsaved({});
    ASSERT_TRUE(page()->unloads);
    page()->post(u"last words"_s);
    page()->post(u"and more"_s);
    answer(u"last words"_s, u"disk full"_s);
    QList<bool> done;
    m_window->whenSaved([&](bool complete) { done.append(complete); });
    EXPECT_EQ(m_told, QStringList());
    lose(u"end"_s);
    letGo();
    EXPECT_EQ(m_told, QStringList{u"disk full|last words"_s});
    EXPECT_EQ(done, QList<bool>{false});
    EXPECT_TRUE(m_window.isNull());
}

TEST_F(ViewerWindows, WhatWaitsForAPageAtItsEndWaitsForItsLastWords)
{
    m_window->close();
    page()->sayUnsaved({});
    page()->post(u"last words"_s);
    QList<bool> done;
    m_window->whenSaved([&](bool complete) { done.append(complete); });
    page()->onUnloaded();
    EXPECT_EQ(done, QList<bool>());
    answer(u"last words"_s);
    EXPECT_EQ(done, QList<bool>{true});
    letGo();
    EXPECT_TRUE(m_window.isNull());
}

TEST_F(ViewerWindows, TheTabAskedForBeforeThePageIsThereIsShown)
{
    const QString summary = ShowTabScript(true);
    page()->onLoaded();
    EXPECT_EQ(page()->scripts, QStringList()) << "a page begins with the tab of its window";
    m_window->showTab(false);
    m_window->showTab(true);
    page()->scripts.clear();
    page()->onLoaded();
    EXPECT_EQ(page()->scripts, QStringList{summary});
    page()->onCrash();
    sheet()->answer(0);
    page()->onLoaded();
    EXPECT_EQ(page()->scripts, QStringList{summary});
}

TEST_F(ViewerWindows, APageThatWasLoadingIsAskedAgainWhatItHasNotSaved)
{
    QList<bool> done;
    m_window->whenSaved([&](bool complete) { done.append(complete); });
    page()->questions.clear();
    page()->onLoaded();
    page()->sayUnsaved({});
    EXPECT_EQ(done, QList<bool>{true});
}

TEST_F(ViewerWindows, APageThatIsStillLoadingHasNothingToSave)
{
    QList<bool> done;
    const auto note = [&](bool complete) { done.append(complete); };
    for (const bool again : {false, true}) {
        SCOPED_TRACE(again);
        if (again) {
            page()->onLoaded();
            page()->onCrash();
            sheet()->answer(0);
        }
        done.clear();
        m_window->whenSaved(note);
        losePatience();
        EXPECT_EQ(done, QList<bool>{true});
    }
    page()->post(u"one"_s); // it stands before all that it shows is loaded
    m_window->whenSaved(note);
    losePatience();
    answer(u"one"_s);
    m_window->whenSaved(note);
    losePatience();
    EXPECT_EQ(done, (QList<bool>{true, false, false}));
}

TEST_F(ViewerWindows, NobodyWaitsForAPageThatIsGone)
{
    page()->onCrash();
    bool done = false;
    m_window->whenSaved([&](bool complete) { done = complete; });
    EXPECT_TRUE(done);
}

} // namespace
