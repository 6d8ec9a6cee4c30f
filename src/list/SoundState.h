#pragma once

#include "list/PurrRules.h"

#include <QTimer>

#include <memory>

namespace tuppi {

class SoundPlayer;

/// Tuppi's sounds. Main thread only.
struct SoundState
{
    SoundState();
    ~SoundState();

    Purr purr = Purr::Silent;
    double purrVolume = 0;
    bool purrRefused = false;            ///< could not be started when last tried
    QTimer purrFade;                     ///< runs while the purr fades
    std::unique_ptr<SoundPlayer> player; ///< made for the first sound
};

} // namespace tuppi
