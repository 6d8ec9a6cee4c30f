#include "viewer/EngineWebView.h"

#include "viewer/WebPage.h"

#include <QContextMenuEvent>
#include <QFile>
#include <QJsonDocument>
#include <QVBoxLayout>
#include <QWebEngineContextMenuRequest>
#include <QWebEngineScript>
#include <QWebEngineScriptCollection>

namespace tuppi {

using namespace Qt::StringLiterals;

namespace {

QString resourceText(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QWebEnginePage::WebAction actionOf(WebView::Command command)
{
    switch (command) {
    case WebView::Command::Cut:
        return QWebEnginePage::Cut;
    case WebView::Command::Copy:
        return QWebEnginePage::Copy;
    case WebView::Command::Paste:
        return QWebEnginePage::Paste;
    case WebView::Command::SelectAll:
        break;
    }
    return QWebEnginePage::SelectAll;
}

QList<WebView::Command> commandsOn(const QWebEngineContextMenuRequest &request)
{
    using Flag = QWebEngineContextMenuRequest;
    const QWebEngineContextMenuRequest::EditFlags flags = request.editFlags();
    QList<WebView::Command> commands;
    if (flags & Flag::CanCut)
        commands.append(WebView::Command::Cut);
    if (flags & Flag::CanCopy)
        commands.append(WebView::Command::Copy);
    if (flags & Flag::CanPaste)
        commands.append(WebView::Command::Paste);
    if (flags & Flag::CanSelectAll)
        commands.append(WebView::Command::SelectAll);
    return commands;
}

} // namespace

PageChannel::PageChannel(EngineWebView *view)
    : m_view(view)
{
}

void PageChannel::post(const QString &json)
{
    const QJsonDocument body = QJsonDocument::fromJson(json.toUtf8());
    if (body.isObject() && m_view->onMessage)
        m_view->onMessage(body.object());
}

EngineWebView::View::View(WebPage *page, EngineWebView *owner)
    : QWebEngineView(owner)
    , m_owner(owner)
{
    setPage(page);
}

void EngineWebView::View::contextMenuEvent(QContextMenuEvent *event)
{
    const QWebEngineContextMenuRequest *request = lastContextMenuRequest();
    if (request && m_owner->onMenu)
        m_owner->onMenu(event->globalPos(), commandsOn(*request));
}

EngineWebView::EngineWebView(QWebEngineProfile *profile, const WebViewSetup &setup, QWidget *parent)
    : WebView(parent)
    , m_setup(setup)
    , m_page(new WebPage(profile, this))
    , m_view(new View(m_page, this))
    , m_tuppi(this)
{
    m_page->setUrlRequestInterceptor(new RequestGuard(setup.folder, m_page));
    m_channel.registerObject(u"tuppi"_s, &m_tuppi);
    m_page->setWebChannel(&m_channel);
    addScript(u"channel"_s, resourceText(u":/qtwebchannel/qwebchannel.js"_s) + resourceText(u":/viewer/channel.js"_s));
    for (const QString &script : setup.scripts)
        addScript(u"setup"_s, script);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_view);
    setFocusProxy(m_view);
    QObject::connect(m_page, &QWebEnginePage::loadFinished, this, [this] {
        if (onLoaded)
            onLoaded();
    });
    QObject::connect(m_page, &QWebEnginePage::windowCloseRequested, this, [this] {
        if (onUnloaded)
            onUnloaded();
    });
    QObject::connect(m_page, &QWebEnginePage::renderProcessTerminated, this,
                     [this](QWebEnginePage::RenderProcessTerminationStatus status) {
                         if (status != QWebEnginePage::NormalTerminationStatus && onCrash)
                             onCrash();
                     });
}

EngineWebView::~EngineWebView()
{
    m_isEnding = true;
    m_page->setWebChannel(nullptr);
    delete m_view;
    delete m_page;
}

void EngineWebView::addScript(const QString &name, const QString &source)
{
    QWebEngineScript script;
    script.setName(name);
    script.setSourceCode(source);
    script.setInjectionPoint(QWebEngineScript::DocumentCreation);
    script.setWorldId(QWebEngineScript::MainWorld);
    script.setRunsOnSubFrames(false);
    m_page->scripts().insert(script);
}

void EngineWebView::load()
{
    m_page->load(QUrl::fromLocalFile(m_setup.page));
}

void EngineWebView::run(const QString &script)
{
    m_page->runJavaScript(script);
}

void EngineWebView::ask(const QString &script, std::function<void(const QVariant &value)> answered)
{
    m_page->runJavaScript(script, [this, answered = std::move(answered)](const QVariant &value) {
        if (!m_isEnding) // a page that goes answers all that it was asked
            answered(value);
    });
}

void EngineWebView::unload()
{
    m_page->triggerAction(QWebEnginePage::RequestClose);
}

void EngineWebView::perform(Command command)
{
    m_page->triggerAction(actionOf(command));
}

void EngineWebView::setZoom(double factor)
{
    m_page->setZoomFactor(factor);
}

} // namespace tuppi
