#include "list/PurrRules.h"

#include "settings/Val.h"

#include <algorithm>

namespace tuppi {

using namespace Qt::StringLiterals;

bool IsPurringWork(const History &history)
{
    return std::any_of(history.active.cbegin(), history.active.cend(), [](const QJsonObject &job) {
        return job.value("status"_L1).toString() != "queued"_L1 && !IsTrue(job.value("paused"_L1));
    });
}

PurrStep NextPurrStep(Purr purr, bool wanted)
{
    switch (purr) {
    case Purr::Silent:
        return wanted ? PurrStep::Start : PurrStep::None;
    case Purr::Playing:
        return wanted ? PurrStep::None : PurrStep::Fade;
    case Purr::Fading:
        return wanted ? PurrStep::Restore : PurrStep::None;
    }
    return PurrStep::None;
}

double FadedVolume(double volume)
{
    constexpr double step = 0.06;
    return std::max(0.0, volume - step);
}

bool IsFadedOut(double volume)
{
    constexpr double inaudible = 0.001;
    return volume <= inaudible;
}

} // namespace tuppi
