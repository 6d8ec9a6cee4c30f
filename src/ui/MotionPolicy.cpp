#include "ui/MotionPolicy.h"

namespace tuppi {

void MotionPolicy::setReducedMotion(bool reduced)
{
    if (m_reducedMotion == reduced)
        return;
    m_reducedMotion = reduced;
    Q_EMIT reducedMotionChanged(reduced);
}

} // namespace tuppi
