#include "app/AppDelegate.h"

#include "engine/RunCallTimeout.h"
#include "export/TranscriptText.h"
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
#include <QPointer>
#include <QScreen>

namespace tuppi {

using namespace Qt::StringLiterals;

ViewerState::ViewerState() = default;

ViewerState::~ViewerState()
{
    // Also those that are closed and still letting their page end: a page must not outlive what made it.
    const QWidgetList topLevel = QApplication::topLevelWidgets();
    QList<ResultWindow *> windows; // picked before the first goes: dialogs over it go with it
    for (QWidget *widget : topLevel) {
        if (auto *window = qobject_cast<ResultWindow *>(widget))
            windows.append(window);
    }
    qDeleteAll(windows);
}

void AppDelegate::showResult(const QJsonObject &row, bool text)
{
    const std::optional<ResultPlan> plan = PlanResult(row, text);
    if (!plan)
        return;
    if (ResultWindow *window = m_viewer.resultWindows.value(plan->key())) {
        window->showTab(plan->summary);
        window->bringForward();
    } else if (!plan->isViewer()) {
        openTextWindow(*plan);
    } else {
        openViewerWindow(*plan, false);
    }
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
        else if (forLackOfSandbox && button == 1)
            openViewerWindow(plan, true);
    });
}

void AppDelegate::showResultAsText(const ResultPlan &plan)
{
    const ResultPlan text = AsText(plan);
    if (ResultWindow *window = m_viewer.resultWindows.value(text.key()))
        window->bringForward();
    else
        openTextWindow(text);
}

void AppDelegate::addResultWindow(ResultWindow *window)
{
    m_viewer.resultWindows.insert(window->plan().key(), window);
    connect(window, &ResultWindow::closing, this, [this, window] { forgetResultWindow(window); });
    connect(window, &ResultWindow::command, this, &AppDelegate::perform);
    connect(window, &ResultWindow::saveRequested, this, [this, window] { saveTextForDir(window->callDir(), window); });
    connect(window, &ResultWindow::shareRequested, this,
            [this, window](QWidget *anchor) { shareTextForDir(window->callDir(), anchor); });
    const QByteArray frame = QByteArray::fromBase64(m_queue.defaults.text(window->plan().frame()).toLatin1());
    if (!window->restoreGeometry(frame))
        window->move(window->screen()->availableGeometry().center() - window->rect().center());
    window->bringForward();
}

void AppDelegate::forgetResultWindow(ResultWindow *window)
{
    m_queue.defaults.set({{window->plan().frame(), QString::fromLatin1(window->saveGeometry().toBase64())}});
    m_viewer.resultWindows.removeIf([window](const auto &open) { return open.value() == window; });
}

void AppDelegate::closeResultWindowsForDir(const QString &callDir)
{
    if (callDir.isEmpty())
        return;
    const QStringList keys = m_viewer.resultWindows.keys();
    for (const QString &key : keys) {
        ResultWindow *window = m_viewer.resultWindows.value(key);
        if (window && key.startsWith(ResultKeyPrefix(callDir)))
            window->close();
    }
}

void AppDelegate::viewerMessage(ViewerWindow *window, const QJsonObject &body, int page)
{
    const ViewerMessage message =
        ReadViewerMessage(body, ViewerCallId(m_jobs.history->entries.withCallDir(window->callDir()), window->callDir()));
    if (message.arguments.isEmpty()) {
        window->answer(page, AnswerScript(Refusal(message)));
        return;
    }
    const auto read = [message](const RawReply &reply) { return ReadViewerReply(message, reply); };
    RunCallRead(message.arguments, this, {}, read,
                [this, page, window = QPointer(window)](const ViewerReply &reply) {
                    if (window)
                        window->answer(page, AnswerScript(reply.answer));
                    if (reply.changesList)
                        poll();
                });
}

} // namespace tuppi
