#include "viewer/ViewerWindow.h"

#include "settings/L.h"
#include "ui/Sheet.h"
#include "viewer/PageScripts.h"

#include <QFileInfo>
#include <QMenu>

#include <utility>

namespace tuppi {

using namespace Qt::StringLiterals;

namespace {

constexpr int pagePatienceMilliseconds = 10000;   // with a page that does not say what it has not saved
constexpr int enginePatienceMilliseconds = 30000; // with an engine that hangs, for each answer
constexpr int endPatienceMilliseconds = 2000;     // with a page that does not end

struct CommandName
{
    WebView::Command command;
    QString title;
    QString name;
};

const QList<CommandName> &commandNames()
{
    static const QList<CommandName> names{{WebView::Command::Cut, LText(u"Cut"_s), u"cut"_s},
                                          {WebView::Command::Copy, LText(u"Copy"_s), u"copy"_s},
                                          {WebView::Command::Paste, LText(u"Paste"_s), u"paste"_s},
                                          {WebView::Command::SelectAll, LText(u"Select All"_s), u"selectAll"_s}};
    return names;
}

} // namespace

ViewerWindow::ViewerWindow(const ResultPlan &plan, WebViews &views, const QStringList &scripts)
    : ResultWindow(plan)
    , m_view(views.make({plan.page, QFileInfo(plan.callDir).canonicalFilePath(), scripts}, this))
{
    m_view->setObjectName(u"viewerPage"_s);
    m_patience.setObjectName(u"patience"_s);
    m_patience.setSingleShot(true);
    // In a page that is still loading nothing was corrected.
    connect(&m_patience, &QTimer::timeout, this, [this] { goOn(!m_pageRuns && m_unanswered == 0); });
    m_end.setObjectName(u"end"_s);
    m_end.setSingleShot(true);
    connect(&m_end, &QTimer::timeout, this, [this] {
        tellLost();
        goOn(m_unanswered == 0);
        deleteLater();
    });
    m_view->onMessage = [this](const QJsonObject &body) {
        m_pageRuns = true;
        ++m_unanswered;
        m_failed.removeAll(WrittenText(body)); // its answer tells
        Q_EMIT messagePosted(body, m_page);
    };
    m_view->onLoaded = [this] {
        m_pageRuns = true;
        // A page that was still loading heard nothing.
        if (m_summary)
            m_view->run(ShowTabScript(*m_summary));
        if (!m_whenSaved.isEmpty())
            askForUnsaved(true);
    };
    m_view->onCrash = [this] { reportCrash(); };
    m_view->onUnloaded = [this] {
        if (m_life == Life::Ending)
            m_life = Life::Unloaded;
        if (!m_whenSaved.isEmpty())
            askForUnsaved(false);
        leaveWhenAnswered();
    };
    m_view->onMenu = [this](const QPoint &place, const QList<WebView::Command> &commands) {
        openMenu(place, commands);
    };
    setContent(m_view);
    load();
}

void ViewerWindow::load()
{
    ++m_page;
    m_pageRuns = false;
    m_pageGone = false;
    m_summary.reset();
    m_view->load();
}

/// Never while the engine is at work: the numbers of the lines would be those from before a split or a join.
void ViewerWindow::loadWhenAnswered()
{
    m_loadsWhenAnswered = m_unanswered > 0;
    if (!m_loadsWhenAnswered)
        load();
}

void ViewerWindow::showTab(bool summary)
{
    m_summary = summary;
    m_view->run(ShowTabScript(summary));
}

void ViewerWindow::answer(int page, const ViewerReply &reply, const QString &written)
{
    --m_unanswered;
    const bool pageIsThere = page == m_page && !m_pageGone && m_life != Life::Unloaded;
    if (!reply.failure.isEmpty() && (m_life != Life::Open || !pageIsThere))
        lose(reply.failure, {written});
    if (!reply.failure.isEmpty() && !m_whenSaved.isEmpty())
        m_failedMeanwhile = true;
    if (m_life == Life::Open)
        tellLost();
    if (pageIsThere)
        m_view->run(AnswerScript(reply.answer));
    if (!m_whenSaved.isEmpty())
        askForUnsaved(false);
    else if (pageIsThere && (!reply.failure.isEmpty() || !m_failed.isEmpty()))
        askForFailed();
    if (m_loadsWhenAnswered && m_life == Life::Open)
        loadWhenAnswered();
    leaveWhenAnswered();
}

void ViewerWindow::whenSaved(std::function<void(bool complete)> then)
{
    m_whenSaved.append(std::move(then));
    askForUnsaved(true);
}

/// The page posts a correction after the answer to the one before, and so is asked again after every answer. By then the
/// person may be at the next edit, which is not waited for.
void ViewerWindow::askForUnsaved(bool endsEdit)
{
    if (m_pageGone || m_life == Life::Unloaded) {
        hearUnsaved({}, {});
        return;
    }
    m_patience.start(pagePatienceMilliseconds);
    m_view->ask(UnsavedScript(endsEdit), [this](const QVariant &said) {
        const QVariantMap texts = said.toMap();
        if (!texts.isEmpty()) // nothing comes from a page that crashes meanwhile
            hearUnsaved(texts.value(u"unsaved"_s).toStringList(), texts.value(u"failed"_s).toStringList());
    });
}

/// What the page offers to try again stands in it alone, until it crashes.
void ViewerWindow::askForFailed()
{
    m_view->ask(FailedScript(), [this, page = m_page](const QVariant &said) {
        const QVariantMap texts = said.toMap();
        if (page == m_page && !texts.isEmpty())
            m_failed = texts.value(u"failed"_s).toStringList();
    });
}

void ViewerWindow::hearUnsaved(const QStringList &unsaved, const QStringList &failed)
{
    m_unsaved = unsaved;
    m_failed = failed;
    if (m_unsaved.isEmpty() && m_unanswered == 0)
        goOn(true);
    else if (!m_whenSaved.isEmpty())
        m_patience.start(enginePatienceMilliseconds);
}

void ViewerWindow::goOn(bool complete)
{
    m_patience.stop();
    const bool allSaved = !std::exchange(m_failedMeanwhile, false) && complete;
    const QList<std::function<void(bool complete)>> all = std::exchange(m_whenSaved, {});
    for (const std::function<void(bool complete)> &then : all)
        then(allSaved);
    m_unsaved.clear(); // what the page says next may be long after
}

void ViewerWindow::setZoom(double factor)
{
    m_view->setZoom(factor);
}

void ViewerWindow::dispose()
{
    m_life = Life::Saving;
    m_view->run(PauseScript());
    whenSaved([this](bool) {
        if (m_life == Life::Saving)
            end();
    });
}

bool ViewerWindow::stay()
{
    if (m_life != Life::Saving)
        return false;
    m_life = Life::Open;
    tellLost();
    if (m_pageGone)
        loadWhenAnswered();
    return true;
}

/// The page may still have something to say when it ends.
void ViewerWindow::end()
{
    losePage(std::exchange(m_unsaved, {}));
    tellLost();
    m_life = Life::Ending;
    m_view->unload();
    m_end.start(endPatienceMilliseconds);
}

void ViewerWindow::leaveWhenAnswered()
{
    if (m_life != Life::Unloaded || m_unanswered > 0)
        return;
    tellLost();
    deleteLater();
}

/// What stood in the page alone.
void ViewerWindow::losePage(const QStringList &unsaved)
{
    QStringList written = std::exchange(m_failed, {});
    written.removeIf([this](const QString &text) { return m_lost.contains(text); }); // failed while the page ended
    written += unsaved;
    if (!written.isEmpty())
        lose(L(u"Could not save this change"_s), written);
}

void ViewerWindow::lose(const QString &reason, const QStringList &written)
{
    m_lostReason = reason;
    m_lost += written;
}

void ViewerWindow::tellLost()
{
    if (!m_lostReason.isEmpty())
        Q_EMIT correctionsLost(std::exchange(m_lostReason, {}), std::exchange(m_lost, {}));
}

void ViewerWindow::reportCrash()
{
    m_pageGone = true;
    // What is with the engine will be answered all the same.
    const QStringList unsaved = std::exchange(m_unsaved, {}).mid(m_unanswered);
    m_failedMeanwhile = m_failedMeanwhile || (!unsaved.isEmpty() && !m_whenSaved.isEmpty());
    losePage(unsaved);
    if (m_life != Life::Open)
        m_life = Life::Unloaded;
    if (!m_whenSaved.isEmpty())
        askForUnsaved(false);
    if (m_life == Life::Unloaded)
        leaveWhenAnswered();
    else
        offerToLoadAgain();
}

void ViewerWindow::offerToLoadAgain()
{
    tellLost();
    SheetText text;
    text.message = L(u"The transcript page has stopped"_s);
    text.detail = L(u"Nothing that was saved is lost. Load the page again to go on."_s);
    text.buttons = {L(u"Load Again"_s), L(u"Close Window"_s)};
    text.isWarning = true;
    Sheet::open(this, text, [this](int button) {
        if (button == 0)
            loadWhenAnswered();
        else
            close();
    });
}

void ViewerWindow::openMenu(const QPoint &place, const QList<WebView::Command> &commands)
{
    auto *menu = new QMenu(this);
    menu->setObjectName(u"viewerMenu"_s);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (const CommandName &known : commandNames()) {
        if (!commands.contains(known.command))
            continue;
        QAction *action = menu->addAction(L(known.title));
        action->setObjectName(known.name);
        connect(action, &QAction::triggered, this, [this, command = known.command] { m_view->perform(command); });
    }
    if (menu->isEmpty())
        menu->deleteLater();
    else
        menu->popup(place);
}

} // namespace tuppi
