#include "app/AppDelegate.h"

#include "app/Scheduler.h"
#include "platform/MediaLengths.h"
#include "platform/ReducedMotion.h"
#include "platform/SleepInhibitor.h"
#include "settings/L.h"
#include "ui/Stage.h"

namespace tuppi {

using namespace Qt::StringLiterals;

PlatformState::PlatformState() = default;
PlatformState::~PlatformState() = default;

void AppDelegate::followDesktop()
{
    const QDBusConnection session = QDBusConnection::sessionBus();
    m_platform.motion = std::make_unique<ReducedMotion>(session);
    MotionPolicy &policy = m_ui.stage->motion;
    connect(m_platform.motion.get(), &ReducedMotion::changed, &policy, &MotionPolicy::setReducedMotion);
    policy.setReducedMotion(m_platform.motion->isReduced());
    m_platform.sleep = std::make_unique<SleepInhibitor>(session, QDBusConnection::systemBus(),
                                                        L(u"A recording is being transcribed"_s));
    connect(this, &AppDelegate::refreshed, m_platform.sleep.get(),
            [this] { m_platform.sleep->setInhibited(IsWorkUnderWay(m_jobs)); });
}

} // namespace tuppi
