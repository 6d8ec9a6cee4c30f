#pragma once

#include "platform/SoundOutput.h"

#include <QObject>
#include <QString>

#include <memory>

namespace tuppi {

/// Plays the application's sounds on a thread of its own, so that a sound server that hangs holds nothing up:
/// every call returns at once, and without a server or a device there is silence.
///
/// Nothing is loaded before the first sound. Its death ends the thread and waits for it only a moment.
class SoundPlayer : public QObject
{
    Q_OBJECT
public:
    /// Makes the output, on the player's thread; null where there is none.
    using Factory = std::function<std::unique_ptr<SoundOutput>()>;

    explicit SoundPlayer(QObject *parent = nullptr);
    explicit SoundPlayer(Factory factory, QObject *parent = nullptr);
    ~SoundPlayer() override;

    /// See SoundOutput. Every play() is answered by started(), unless the sound server never answers.
    void play(const QString &name, double volume, bool loops);
    void setVolume(const QString &name, double volume);
    void stop(const QString &name);

Q_SIGNALS:
    void started(const QString &name, bool loaded, bool plays);
    /// A sound that was playing fell silent, because its device or its server has gone.
    void lost(const QString &name);

private:
    class Worker;

    void post(std::function<void(Worker &)> call);

    QThread *m_thread = nullptr;
    Worker *m_worker = nullptr;
};

} // namespace tuppi
