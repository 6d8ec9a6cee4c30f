#include "viewer/ViewerWindow.h"

#include "settings/L.h"
#include "ui/Sheet.h"
#include "viewer/PageScripts.h"

#include <QFileInfo>
#include <QMenu>
#include <QTimer>

namespace tuppi {

using namespace Qt::StringLiterals;

namespace {

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
    m_view->onMessage = [this](const QJsonObject &body) { Q_EMIT messagePosted(body, m_page); };
    m_view->onCrash = [this] { reportCrash(); };
    m_view->onUnloaded = [this] {
        if (m_isClosed)
            deleteLater();
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
    m_view->load();
}

void ViewerWindow::showTab(bool summary)
{
    m_view->run(ShowTabScript(summary));
}

void ViewerWindow::answer(int page, const QString &script)
{
    if (page == m_page)
        m_view->run(script);
}

void ViewerWindow::setZoom(double factor)
{
    m_view->setZoom(factor);
}

/// The page may still have something to save, and does so when it ends.
void ViewerWindow::dispose()
{
    constexpr int patienceMilliseconds = 2000; // with a page that hangs
    m_isClosed = true;
    m_view->run(PauseScript());
    m_view->unload();
    QTimer::singleShot(patienceMilliseconds, this, &QObject::deleteLater);
}

void ViewerWindow::reportCrash()
{
    if (m_isClosed) {
        deleteLater();
        return;
    }
    SheetText text;
    text.message = L(u"The transcript page has stopped"_s);
    text.detail = L(u"Nothing that was saved is lost. Load the page again to go on."_s);
    text.buttons = {L(u"Load Again"_s), L(u"Close Window"_s)};
    text.isWarning = true;
    Sheet::open(this, text, [this](int button) {
        if (button == 0)
            load();
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
