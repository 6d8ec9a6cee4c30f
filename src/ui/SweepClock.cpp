#include "ui/SweepClock.h"

#include "ui/FrameTicks.h"
#include "ui/Metrics.h"
#include "ui/MotionPolicy.h"
#include "ui/SkyBar.h"

#include <QTimerEvent>

namespace tuppi {

SweepClock::SweepClock(MotionPolicy &motion, QObject *parent)
    : QObject(parent)
    , m_motion(motion)
{
    m_time.start();
    connect(&motion, &MotionPolicy::reducedMotionChanged, this, [this] {
        if (isStill())
            m_timer.stop();
        Q_EMIT redraw();
    });
    connect(&m_bars, &SightList::cameBack, this, &SweepClock::redraw);
}

void SweepClock::painted(SkyBar *bar)
{
    if (isStill() || !isInSight(*bar))
        return;
    m_bars.add(bar);
    if (!m_timer.isActive())
        awaitTick();
}

void SweepClock::awaitTick()
{
    m_timer.start(millisecondsToTick(Metrics::tickInterval), this);
}

double SweepClock::phase() const
{
    return double(m_time.elapsed() % Metrics::sweepDuration) / Metrics::sweepDuration;
}

bool SweepClock::isStill() const
{
    return m_motion.reducedMotion();
}

void SweepClock::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_timer.timerId())
        return QObject::timerEvent(event);
    bool moving = false;
    for (QWidget *widget : m_bars.look())
        moving |= static_cast<SkyBar *>(widget)->advance();
    if (moving) {
        awaitTick();
    } else {
        m_bars.clear();
        m_timer.stop();
    }
}

} // namespace tuppi
