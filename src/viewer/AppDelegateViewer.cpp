#include "app/AppDelegate.h"

#include "engine/RunCallTimeout.h"
#include "export/TranscriptText.h"
#include "settings/Fill.h"
#include "settings/L.h"
#include "ui/MainWindow.h"
#include "ui/Sheet.h"
#include "viewer/LoadWebViews.h"
#include "viewer/PageScripts.h"
#include "viewer/ResultPlan.h"
#include "viewer/TextWindow.h"
#include "viewer/ViewerMessage.h"
#include "viewer/ViewerWindow.h"

#include <QApplication>
#include <QPlainTextEdit>
#include <QPointer>
#include <QRegularExpression>

#include <utility>

namespace tuppi {

using namespace Qt::StringLiterals;

void AppDelegate::showResult(const QJsonObject &row, bool text)
{
    const std::optional<ResultPlan> plan = PlanResult(row, text);
    if (!plan)
        return;
    if (showOpenResult(*plan))
        return;
    if (!plan->isViewer()) {
        openTextWindow(*plan);
        return;
    }
    // One that is too far gone to be taken back may still be saving what the new page has to show.
    m_viewer.whenSaved({plan->callDir}, [this, plan = *plan](bool) {
        if (!showOpenResult(plan))
            openViewerWindow(plan, false);
    });
}

/// Brings the window of that plan forward, if it is open.
bool AppDelegate::showOpenResult(const ResultPlan &plan)
{
    ResultWindow *window = m_viewer.window(plan.key());
    if (!window)
        return false;
    window->showTab(plan.summary);
    window->bringForward();
    return true;
}

void AppDelegate::openTextWindow(const ResultPlan &plan)
{
    const QString text = TextForDir(plan.callDir, u"summary"_s).value_or(QString());
    addResultWindow(new TextWindow(plan, text));
}

void AppDelegate::openViewerWindow(const ResultPlan &plan, bool withoutSandbox)
{
    if (!m_viewer.views) {
        LoadedWebViews loaded = LoadWebViews(withoutSandbox ? Sandboxing::GivenUp : Sandboxing::Required);
        m_viewer.views = std::move(loaded.views);
        if (!m_viewer.views) {
            offerTextInstead(plan, loaded.lack == WebViewsLack::Sandbox);
            return;
        }
    }
    LocalTable table;
    table.loadTable(u":/localization/%1.json"_s.arg(m_ui.language));
    QStringList scripts{viewerI18nScript(table.texts(), m_ui.language)};
    if (plan.summary)
        scripts.append(BeginWithSummaryScript());
    auto *window = new ViewerWindow(plan, *m_viewer.views, scripts);
    connect(window, &ViewerWindow::messagePosted, this,
            [this, window](const QJsonObject &body, int page) { viewerMessage(window, body, page); });
    connect(window, &ViewerWindow::correctionsLost, this,
            [this, title = plan.title](const QString &reason, const QStringList &written) {
                tellLost(title, reason, written);
            });
    addResultWindow(window);
}

void AppDelegate::offerTextInstead(const ResultPlan &plan, bool forLackOfSandbox)
{
    SheetText text;
    text.message = L(u"The transcript page cannot be shown"_s);
    text.isWarning = true;
    if (forLackOfSandbox) {
        text.detail = L(u"This computer, or this account, does not let the page be shut off from the rest of the system. "
                        "You can read the transcript as plain text, or open the page without that protection until "
                        "the app quits."_s);
        text.buttons = {L(u"Show Text"_s), L(u"Open Anyway"_s), L(u"Cancel"_s)};
    } else {
        text.detail = L(u"A part of the system is missing: install Qt WebEngine (on Debian the packages "
                        "libqt6webenginewidgets6 and libqt6webenginecore6-bin). You can read the transcript as plain "
                        "text meanwhile."_s);
        text.buttons = {L(u"Show Text"_s), L(u"Cancel"_s)};
    }
    text.escapeButton = int(text.buttons.size()) - 1;
    Sheet::open(m_ui.window.get(), text, [this, plan, forLackOfSandbox](int button) {
        if (button == 0)
            showResultAsText(plan);
        else if (forLackOfSandbox && button == 1 && !showOpenResult(plan)) // asked twice, it may be open by now
            openViewerWindow(plan, true);
    });
}

void AppDelegate::showResultAsText(const ResultPlan &plan)
{
    const ResultPlan text = AsText(plan);
    if (!showOpenResult(text))
        openTextWindow(text);
}

void AppDelegate::addResultWindow(ResultWindow *window)
{
    m_viewer.callQuitOff();
    m_viewer.resultWindows.insert(window->plan().key(), window);
    connect(window, &ResultWindow::frameChanged, this, [this, window] { rememberFrame(window, window->plan().frame()); });
    connect(window, &ResultWindow::closing, this, [this, window] { m_viewer.forget(window); });
    connect(window, &ResultWindow::command, this, &AppDelegate::perform);
    qApp->installEventFilter(&m_viewer); // here: without a result window no event comes this way
    connect(window, &ResultWindow::saveRequested, this, [this, window] { saveTextForDir(window->callDir(), window); });
    connect(window, &ResultWindow::shareRequested, this,
            [this, window](QWidget *anchor) { shareTextForDir(window->callDir(), anchor); });
    restoreFrame(window, window->plan().frame());
    window->bringForward();
}

/// Where the page that could have told it is gone. A quit is off: what was written stands nowhere else.
void AppDelegate::tellLost(const QString &title, const QString &reason, const QStringList &written)
{
    m_viewer.callQuitOff();
    SheetText text;
    text.message = Fill(L(u"A correction to “%@” was not saved"_s), {title});
    text.detail = reason;
    text.isWarning = true;
    m_ui.window->bringForward();
    Sheet *sheet = Sheet::open(m_ui.window.get(), text);
    const QString lines = QStringList(written).filter(QRegularExpression(u"\\S"_s)).join(u'\n');
    if (lines.isEmpty())
        return;
    auto *place = new QPlainTextEdit(lines);
    place->setObjectName(u"lostText"_s);
    place->setAccessibleName(L(u"Text of the line"_s));
    place->setReadOnly(true);
    sheet->setAccessory(place);
}

void AppDelegate::closeResultWindowsForDir(const QString &callDir)
{
    m_viewer.closeForGood(callDir);
}

void AppDelegate::viewerMessage(ViewerWindow *window, const QJsonObject &body, int page)
{
    const ViewerMessage message =
        ReadViewerMessage(body, ViewerCallId(m_jobs.history->entries.withCallDir(window->callDir()), window->callDir()));
    const QString written = WrittenText(body);
    if (message.arguments.isEmpty()) {
        window->answer(page, Refusal(message), written);
        return;
    }
    const auto read = [message](const RawReply &reply) { return ReadViewerReply(message, reply); };
    RunCallRead(message.arguments, this, {}, read,
                [this, page, written, title = window->plan().title, window = QPointer(window)](const ViewerReply &reply) {
                    if (window)
                        window->answer(page, reply, written);
                    else if (!reply.failure.isEmpty())
                        tellLost(title, reply.failure, {written});
                    if (reply.changesList)
                        poll();
                });
}

} // namespace tuppi
