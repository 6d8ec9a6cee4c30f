#pragma once

#include <QObject>

namespace tuppi {

/// Whether the person has asked the desktop for less motion. Set from outside, also while running; whoever
/// moves something holds a reference to it. It outlives all who do.
class MotionPolicy : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool reducedMotion READ reducedMotion WRITE setReducedMotion NOTIFY reducedMotionChanged)
public:
    using QObject::QObject;

    bool reducedMotion() const { return m_reducedMotion; }
    void setReducedMotion(bool reduced);

Q_SIGNALS:
    void reducedMotionChanged(bool reduced);

private:
    bool m_reducedMotion = false;
};

} // namespace tuppi
