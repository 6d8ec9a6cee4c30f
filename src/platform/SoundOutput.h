#pragma once

#include <QString>

#include <functional>

namespace tuppi {

/// What plays the application's sounds. Lives on the thread that made it, and may hold that thread up.
class SoundOutput
{
public:
    virtual ~SoundOutput() = default;

    struct Start
    {
        bool loaded = false; ///< there is such a sound
        bool plays = false;
    };
    /// Plays a sound from its beginning, once or for ever; if it is playing, anew. `volume`: 0 to 1.
    virtual Start play(const QString &name, double volume, bool loops) = 0;
    virtual void setVolume(const QString &name, double volume) = 0;
    virtual void stop(const QString &name) = 0;

    /// Told of a sound that falls silent because its device or its server has gone.
    std::function<void(const QString &name)> lost;
};

} // namespace tuppi
