#pragma once

#include "ui/Mascots.h"
#include "ui/MotionPolicy.h"
#include "ui/SweepClock.h"
#include "ui/TuppiCache.h"

namespace tuppi {

class RowView;

/// What everything that moves shares: whether it may, Tuppi's pictures, the sweep of the bars. One for the
/// application; outlives every window.
class Stage
{
public:
    Stage() = default;
    Q_DISABLE_COPY_MOVE(Stage)

    /// Owned by `parent`.
    RowView *makeRow(QWidget *parent);

    MotionPolicy motion;
    Mascots mascots{motion};
    SweepClock sweep{motion};
    TuppiCache cache;
};

} // namespace tuppi
