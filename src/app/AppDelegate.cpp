#include "app/AppDelegate.h"

#include "app/MainLoop.h"
#include "app/Scheduler.h"
#include "engine/EngineCommands.h"
#include "engine/EngineInstaller.h"
#include "engine/RunCallTimeout.h"

#include "platform/ActivateWindow.h"
#include "settings/L.h"
#include "settings/LibraryTexts.h"
#include "ui/MainWindow.h"

#include <QDateTime>
#include <QDir>
#include <QWindow>

namespace tuppi {

using namespace Qt::StringLiterals;

AppDelegate::AppDelegate(Defaults &defaults, QObject *parent)
    : QObject(parent)
    , m_queue(defaults)
{
    constexpr int tickMilliseconds = 2000;
    constexpr int watchDelayMilliseconds = 150; // one poll for the burst of renames that one change makes
    m_timer.setInterval(tickMilliseconds);
    m_watchDelay.setInterval(watchDelayMilliseconds);
    m_watchDelay.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &AppDelegate::tick);
    connect(&m_watchDelay, &QTimer::timeout, this, &AppDelegate::poll);
    connect(&m_stateWatch, &QFileSystemWatcher::directoryChanged, this, [this] {
        if (!m_watchDelay.isActive())
            m_watchDelay.start();
    });
}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching(Face face)
{
    restoreWaiting();
    if (face == Face::Terminal) {
        keepAwake();
        startWork();
        return;
    }
    buildWindow();
    connect(m_ui.window.get(), &MainWindow::firstPainted, this, &AppDelegate::tellSettingsSetAside);
    // What the desktop's services and the engine's programs need of the computer would hold up the first picture.
    connect(m_ui.window.get(), &MainWindow::firstPainted, this, &AppDelegate::followDesktop);
    connect(m_ui.window.get(), &MainWindow::firstPainted, this, &AppDelegate::startWork);
}

void AppDelegate::tellSettingsSetAside()
{
    const QString aside = m_queue.defaults.setAside();
    if (aside.isEmpty())
        return;
    Q_EMIT failureReported(L(u"Your settings could not be read"_s), SettingsSetAsideDetail(aside, QDir::homePath()));
}

void AppDelegate::startWork()
{
    if (m_jobs.engineInstaller.isEmpty()) {
        askEngine();
        return;
    }
    m_jobs.settingUp = true;
    SetUpEngine(m_jobs.engineInstaller, this, [this](const EngineReply &reply) {
        m_jobs.settingUp = false;
        if (EngineSetupFailed(reply.status))
            reportFailure(reply.status, reply.err, L(u"The engine could not be set up"_s));
        askEngine();
    });
}

void AppDelegate::askEngine()
{
    RunCallTimeout(command::resume(), this, {}, 0);
    refreshCustomModels();
    poll();
    m_timer.start();
    m_notices.memory.launchedAt = QDateTime::currentDateTimeUtc();
    watchEngineState();
}

void AppDelegate::applicationShouldHandleReopen(const QString &token)
{
    m_viewer.callQuitOff();
    m_ui.window->bringForward();
    ActivateWindow(m_ui.window->windowHandle(), token);
}

void AppDelegate::tick()
{
    ++m_jobs.pollTick;
    const bool working = SomethingActive(m_jobs) || !m_jobs.waiting.isEmpty();
    const TickPlan plan = PlanTick(m_jobs.pollTick, working, m_jobs.starting, m_jobs.loaded);
    if (m_stateWatch.directories().isEmpty())
        watchEngineState();
    if (plan.resume)
        RunCallTimeout(command::resume(), this, {}, 0);
    if (plan.poll)
        poll();
}

void AppDelegate::watchEngineState()
{
    const QString folder = EngineFolder();
    if (QDir(folder).exists())
        m_stateWatch.addPath(folder);
}

} // namespace tuppi
