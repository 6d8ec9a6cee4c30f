#pragma once

#include <QDateTime>
#include <QString>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

namespace engine {

inline constexpr int sampleRate = 16000; // per second; what the recognisers want

// Reads the sound of a recording as 16 kHz mono, 16 bits, in order and in bounded memory, whatever the file's
// own form. The same file always gives the same samples. Damaged parts are skipped; a file that ends too
// early simply ends. Nothing but the file itself is read, also when it refers to other files or addresses.
class AudioReader
{
public:
    // Throws Failure with a sentence when the file is not there or no recording that can be read.
    explicit AudioReader(const QString &path);
    ~AudioReader();
    AudioReader(const AudioReader &) = delete;
    AudioReader &operator=(const AudioReader &) = delete;

    // Fills the front of `samples` and returns how many; less than asked for only at the end, 0 after it.
    size_t read(std::span<int16_t> samples);

    // Moves on without giving out, by at most `count` samples.
    void skip(int64_t count);

    // Samples given out or skipped so far.
    int64_t position() const { return m_position; }

    // Whether a table of very many packets is held for as long as this reads, as for an MP4 of hours.
    bool holdsLongTable() const;

    // What the file says about itself; nothing when it does not.
    std::optional<double> durationSeconds() const;
    std::optional<QDateTime> recordedAt() const;

private:
    class Private;
    std::unique_ptr<Private> m_private;
    int64_t m_position = 0;
};

// Empty when every kind of accepted recording can be decoded here, else what is missing.
QString decodingTrouble();

} // namespace engine
