#pragma once

#include <memory>

namespace tuppi {

class MediaLengths;
class ReducedMotion;
class SleepInhibitor;

/// The desktop's services that the controller uses. Empty without a window.
struct PlatformState
{
    PlatformState();
    ~PlatformState();

    std::unique_ptr<ReducedMotion> motion;
    std::unique_ptr<SleepInhibitor> sleep;
    std::unique_ptr<MediaLengths> lengths;  ///< made when the first file is to be measured
};

} // namespace tuppi
