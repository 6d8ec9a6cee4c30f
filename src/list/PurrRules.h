#pragma once

#include "engine/EngineReplies.h"

namespace tuppi {

/// The volume (0 to 1) at which Tuppi's sounds play.
inline constexpr double soundVolume = 0.5;
/// Time between two steps of the fade, in milliseconds.
inline constexpr int fadeStepMilliseconds = 50;

enum class Purr { Silent, Playing, Fading };

/// What has to happen to the purr.
enum class PurrStep {
    None,
    Start,   ///< from the beginning, at soundVolume
    Restore, ///< call the fade off and go on at soundVolume
    Fade,
};

/// Whether the engine really works on a file: a job that only waits or is paused does not count.
bool IsPurringWork(const History &history);

/// `wanted`: there is work, and sounds are on.
PurrStep NextPurrStep(Purr purr, bool wanted);

/// The volume after one step of the fade.
double FadedVolume(double volume);
/// Whether the purr is to be stopped at that volume.
bool IsFadedOut(double volume);

} // namespace tuppi
