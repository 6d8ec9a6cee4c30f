#include "platform/SoundModule.h"

#include <QAudioDevice>
#include <QAudioSink>
#include <QFile>
#include <QMediaDevices>
#include <QWaveDecoder>

#include <algorithm>
#include <map>
#include <memory>

namespace {

using namespace Qt::StringLiterals;

/// A sound in memory: one channel of 16-bit samples, nothing when there is no such sound.
struct Sound
{
    QAudioFormat format;
    QByteArray samples;
};

Sound BundleSound(const QString &name)
{
    QFile file(u":/sounds/%1.wav"_s.arg(name));
    QWaveDecoder decoder(&file);
    if (!file.open(QIODevice::ReadOnly) || !decoder.open(QIODevice::ReadOnly))
        return {};
    const QAudioFormat format = decoder.audioFormat();
    if (format.sampleFormat() != QAudioFormat::Int16 || format.channelCount() != 1)
        return {};
    return {format, decoder.readAll()};
}

/// One sound on its way to the loudspeaker, which reads it from here a little ahead of what is heard.
///
/// Not QSoundEffect: that one takes a change of volume up only every 100 ms, and at its end drops twice as much
/// of what it has already taken.
class Voice : public QIODevice
{
public:
    explicit Voice(const Sound &sound)
        : m_sound(sound)
    {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

    void begin(double volume, bool loops)
    {
        m_at = 0;
        m_gain = m_volume = volume;
        m_loops = loops;
        m_silence = -1;
    }
    void setVolume(double volume) { m_volume = volume; }
    /// What has been read will still be heard.
    void end()
    {
        if (!hasEnded())
            m_silence = m_sound.format.framesForDuration(silenceMicroseconds);
    }
    bool hasEnded() const { return m_silence >= 0; }
    bool isOver() const { return m_silence == 0; }

    bool isSequential() const override { return true; }
    qint64 bytesAvailable() const override { return isOver() ? 0 : m_sound.samples.size(); }

protected:
    qint64 readData(char *data, qint64 size) override
    {
        const auto *samples = reinterpret_cast<const qint16 *>(m_sound.samples.constData());
        auto *out = reinterpret_cast<qint16 *>(data);
        qint64 written = 0;
        for (; written < size / qint64(sizeof(qint16)) && !isOver(); ++written) {
            if (m_at == count() && !m_loops)
                end();
            if (hasEnded()) {
                out[written] = 0;
                --m_silence;
                continue;
            }
            // A change is spread over a few milliseconds: a jump would be heard as a click.
            m_gain += std::clamp(m_volume - m_gain, -gainPerSample, gainPerSample);
            out[written] = qint16(samples[m_at % count()] * m_gain);
            m_at = m_at % count() + 1;
        }
        return written * qint64(sizeof(qint16));
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    static constexpr double gainPerSample = 0.0005;
    /// Follows every sound: the last of what the way out has taken is dropped when it has nothing more to take.
    static constexpr qint64 silenceMicroseconds = 500'000;

    qsizetype count() const { return m_sound.samples.size() / qsizetype(sizeof(qint16)); }

    const Sound &m_sound;
    qsizetype m_at = 0;
    double m_volume = 0;
    double m_gain = 0;
    bool m_loops = false;
    qint64 m_silence = 0; ///< frames of it that are still to come, negative while the sound goes on
};

/// A loaded sound and, while it plays, its way out.
class Player
{
public:
    Player(const QString &name, const std::function<void(const QString &)> &lost)
        : m_name(name)
        , m_sound(BundleSound(name))
        , m_voice(m_sound)
        , m_lost(lost)
    {
    }

    bool isLoaded() const { return !m_sound.samples.isEmpty(); }
    Voice &voice() { return m_voice; }

    bool play(double volume, bool loops)
    {
        // A way out of its own for each start: what the last one has taken and not yet played is dropped.
        close();
        const QAudioDevice device = QMediaDevices::defaultAudioOutput();
        if (device.isNull())
            return false;
        m_voice.begin(volume, loops);
        m_sink.reset(new QAudioSink(device, m_sound.format));
        QObject::connect(m_sink.get(), &QAudioSink::stateChanged, &m_voice,
                         [this](QAudio::State state) { followState(state); });
        m_sink->start(&m_voice);
        return m_sink != nullptr;
    }

private:
    struct End
    {
        void operator()(QAudioSink *sink) const
        {
            silence(sink);
            delete sink;
        }
    };

    static void silence(QAudioSink *sink)
    {
        sink->disconnect();
        sink->stop();
    }

    void close() { m_sink.reset(); }

    /// From within what the sink itself tells, which it has to outlive.
    void closeLater()
    {
        silence(m_sink.get());
        m_sink.release()->deleteLater();
    }

    void followState(QAudio::State state)
    {
        if (state == QAudio::StoppedState) {
            const bool wasPlaying = !m_voice.hasEnded();
            closeLater();
            if (wasPlaying && m_lost)
                m_lost(m_name);
        } else if (state == QAudio::IdleState && m_voice.isOver()) {
            closeLater();
        }
    }

    const QString m_name;
    const Sound m_sound;
    Voice m_voice;
    const std::function<void(const QString &)> &m_lost;
    std::unique_ptr<QAudioSink, End> m_sink;
};

class Output : public tuppi::SoundOutput
{
public:
    Start play(const QString &name, double volume, bool loops) override
    {
        Player &player = at(name);
        if (!player.isLoaded())
            return {};
        return {true, player.play(volume, loops)};
    }
    void setVolume(const QString &name, double volume) override { at(name).voice().setVolume(volume); }
    void stop(const QString &name) override { at(name).voice().end(); }

private:
    Player &at(const QString &name)
    {
        std::unique_ptr<Player> &player = m_players[name];
        if (!player)
            player = std::make_unique<Player>(name, lost);
        return *player;
    }

    std::map<QString, std::unique_ptr<Player>> m_players;
};

} // namespace

tuppi::SoundOutput *tuppiSoundOutput()
{
    return new Output;
}
