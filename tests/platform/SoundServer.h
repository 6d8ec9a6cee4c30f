#pragma once

#include <QList>
#include <QProcess>
#include <QTemporaryDir>

/// A sound server for one test, with a loudspeaker that nobody hears. Stops when it dies.
class SoundServer
{
public:
    SoundServer();
    ~SoundServer();
    Q_DISABLE_COPY(SoundServer)

    /// What PULSE_SERVER is to be for those who play there.
    QString address() const;
    bool start();
    void kill();
    void freeze();
    void thaw();

private:
    QTemporaryDir m_dir;
    QProcess m_daemon;
};

/// What the loudspeaker of a server plays, as one channel of 16-bit samples at 44.1 kHz, bit by bit.
class Recording
{
public:
    explicit Recording(const SoundServer &server);
    ~Recording();
    Q_DISABLE_COPY(Recording)

    /// Everything so far.
    const QList<qint16> &samples();

private:
    QProcess m_silence;
    QProcess m_recorder;
    QList<qint16> m_samples;
    QByteArray m_rest;
};

/// The samples of one of the application's sounds, from its file.
QList<qint16> SoundFile(const QString &name);
