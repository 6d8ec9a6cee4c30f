#include "app/MainLoop.h"

namespace tuppi {

TickPlan PlanTick(unsigned tick, bool working, bool starting, bool loaded)
{
    if (working)
        return {tick % 15 == 0 && !starting, true};
    return {false, tick % 5 == 0 || !loaded};
}

bool IsEngineBroken(int status, bool replyIsArray, bool engineFileExists)
{
    constexpr int commandNotFound = 127;
    if (status == commandNotFound || replyIsArray)
        return !replyIsArray;
    return !engineFileExists;
}

} // namespace tuppi
