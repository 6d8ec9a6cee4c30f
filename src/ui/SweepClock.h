#pragma once

#include "ui/Sight.h"

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QObject>

namespace tuppi {

class MotionPolicy;
class SkyBar;

/// Moves the sweep of all bars without a known amount: one timer for all, which runs only while at least one
/// of them is in sight and motion is wanted. The bars hold a reference to it; it outlives them.
class SweepClock : public QObject
{
    Q_OBJECT
public:
    explicit SweepClock(MotionPolicy &motion, QObject *parent = nullptr);

    /// A bar says so whenever it has painted its sweep.
    void painted(SkyBar *bar);

    /// How far the sweep has gone, 0 to 1.
    double phase() const;
    bool isRunning() const { return m_timer.isActive(); }
    bool isStill() const;

Q_SIGNALS:
    /// Every bar is to draw itself anew: motion is wanted, or no longer, or a window has come back.
    void redraw();

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    void awaitTick();

    MotionPolicy &m_motion;
    SightList m_bars;
    QBasicTimer m_timer;
    QElapsedTimer m_time;
};

} // namespace tuppi
