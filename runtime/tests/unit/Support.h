#pragma once

#include "core/Failure.h"
#include "core/Paths.h"
#include "store/Jobs.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <ostream>
#include <vector>

// Readable values in what a failing test prints.
inline void PrintTo(const QString &text, std::ostream *out)
{
    *out << '"' << text.toStdString() << '"';
}

namespace engine::test {

// A home folder that vanishes with the test.
class Home
{
public:
    QString path() const { return m_folder.path(); }
    Paths paths() const { return Paths::under(m_folder.path()); }
    QString file(const QString &name) const { return m_folder.filePath(name); }

private:
    QTemporaryDir m_folder;
};

// A variable of the environment that is what it was again when the test is over.
class Variable
{
public:
    Variable(const char *name, const QByteArray &value)
        : m_name(name)
        , m_wasSet(qEnvironmentVariableIsSet(name))
        , m_before(qgetenv(name))
    {
        qputenv(name, value);
    }
    ~Variable() { m_wasSet ? qputenv(m_name, m_before) : qunsetenv(m_name); }
    Variable(const Variable &) = delete;
    Variable &operator=(const Variable &) = delete;

private:
    const char *m_name;
    bool m_wasSet;
    QByteArray m_before;
};

inline void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    ASSERT_EQ(file.write(bytes), bytes.size());
}

inline QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The sentence of the Failure that `action` throws; "no failure" when it throws none.
template <typename Action> QString sentenceOf(Action action)
{
    try {
        action();
    } catch (const Failure &failure) {
        return failure.sentence();
    }
    return QStringLiteral("no failure");
}

inline Job sampleJob(const QString &title = QStringLiteral("Interview"))
{
    Job job;
    job.id = newJobId();
    job.status = Status::queued.toString();
    job.title = title;
    job.callDir = QStringLiteral("/library/") + title;
    job.audio = QStringLiteral("Technical files/audio.m4a");
    job.recordedAt = QStringLiteral("2025-03-14T10:22:33");
    job.engineChoice = QStringLiteral("auto");
    job.languageChoice = QStringLiteral("auto");
    job.language = QStringLiteral("auto");
    job.createdAt = contractNow();
    return job;
}

inline Job addJob(Database &database, Job job)
{
    Transaction transaction(database);
    insertJob(database, job);
    transaction.commit();
    return job;
}

// Sounds of 16 kHz mono; lengths in seconds.
inline void appendSilence(std::vector<int16_t> &samples, double seconds)
{
    samples.insert(samples.end(), size_t(seconds * 16000), int16_t(0));
}

// Noise without a surprise: the same numbers each time.
inline void appendNoise(std::vector<int16_t> &samples, double seconds, int amplitude)
{
    uint32_t state = uint32_t(samples.size()) * 2654435761U + 12345;
    for (size_t i = 0; i < size_t(seconds * 16000); ++i) {
        state = state * 1664525U + 1013904223U;
        samples.push_back(int16_t(int(state >> 16) % (2 * amplitude + 1) - amplitude));
    }
}

// Something as loud and as restless as speech: noise that swells four times a second.
inline void appendBabble(std::vector<int16_t> &samples, double seconds, int amplitude)
{
    const size_t start = samples.size();
    appendNoise(samples, seconds, amplitude);
    for (size_t i = start; i < samples.size(); ++i)
        samples[i] = int16_t(samples[i] *
                             (0.3 + 0.7 * std::pow(std::sin(double(i - start) * 3.14159 * 4 / 16000), 2)));
}

// A WAV file of 16-bit samples.
inline QByteArray wav(const std::vector<int16_t> &samples, int rate = 16000, int channels = 1)
{
    const auto number = [](uint32_t value, int bytes) {
        QByteArray text;
        for (int i = 0; i < bytes; ++i)
            text.append(char(value >> (8 * i)));
        return text;
    };
    const auto size = uint32_t(samples.size() * 2);
    return "RIFF" + number(36 + size, 4) + "WAVEfmt " + number(16, 4) + number(1, 2) +
           number(uint32_t(channels), 2) + number(uint32_t(rate), 4) +
           number(uint32_t(rate * channels * 2), 4) + number(uint32_t(channels * 2), 2) + number(16, 2) +
           "data" + number(size, 4) +
           QByteArray(reinterpret_cast<const char *>(samples.data()), qsizetype(size));
}

} // namespace engine::test
