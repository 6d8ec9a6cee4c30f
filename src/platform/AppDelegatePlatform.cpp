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
    keepAwake();
}

/// While work is under way. What follows a job or a start is known after the next poll: sleep would be let in between.
void AppDelegate::keepAwake()
{
    m_platform.sleep = std::make_unique<SleepInhibitor>(QDBusConnection::sessionBus(), QDBusConnection::systemBus(),
                                                        L(u"A recording is being transcribed"_s));
    const auto follow = [this](bool polled) {
        const bool wanted = IsWorkUnderWay(m_jobs) && !m_jobs.engineBroken;
        if (wanted || polled || m_jobs.engineBroken)
            m_platform.sleep->setInhibited(wanted);
    };
    connect(this, &AppDelegate::refreshed, m_platform.sleep.get(), [follow] { follow(false); });
    connect(this, &AppDelegate::polled, m_platform.sleep.get(), [follow] { follow(true); });
}

} // namespace tuppi
