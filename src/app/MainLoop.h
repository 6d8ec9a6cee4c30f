#pragma once

namespace tuppi {

/// What one tick of the 2-second timer does.
struct TickPlan
{
    bool resume = false;
    bool poll = false;
};

/// `tick` counts from 1. `working`: a start in flight, a file waiting or a job under way.
TickPlan PlanTick(unsigned tick, bool working, bool starting, bool loaded);

/// Whether the engine counts as missing after a history query.
bool IsEngineBroken(int status, bool replyIsArray, bool engineFileExists);

} // namespace tuppi
