#include "ui/FrameTicks.h"

#include "ui/Metrics.h"

#include <chrono>

namespace tuppi {

int millisecondsToTick(int milliseconds)
{
    // The clock that Qt's timers go by.
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return millisecondsToTick(std::chrono::duration_cast<std::chrono::milliseconds>(now).count(), milliseconds);
}

int millisecondsToTick(long long now, int milliseconds)
{
    constexpr long long tick = Metrics::tickInterval;
    const long long nearest = (now + milliseconds + tick / 2) / tick * tick;
    return int((nearest > now ? nearest : now / tick * tick + tick) - now);
}

} // namespace tuppi
