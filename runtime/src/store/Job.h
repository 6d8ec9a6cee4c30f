#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <optional>

namespace engine {

// One recording and everything known about it, as the store keeps it.
struct Job
{
    qint64 seq = 0; // the store's own number, rising with the time of arrival
    QString id;
    QString status; // one of the texts in `Status`
    bool paused = false;
    bool hidden = false;
    QString title;
    QString callDir;    // absolute
    QString audio;      // the recording, relative to callDir
    QString error;      // a sentence, only of a failed job
    QString recordedAt; // local time, 2025-03-14T10:22:33
    std::optional<double> durationSeconds;
    QString engine;         // only when a Parakeet or a Whisper did the work
    QString recogniser;     // what did the work, by its own name
    QString engineChoice;   // what was asked for
    QString languageChoice; // what was asked for; "auto" leaves it to the engine
    QString language;       // what it is, as far as known
    bool speakers = false;
    bool clean = true;
    bool analyze = true;
    QString progress;     // 12/40 segments; empty while unknown
    bool planned = false; // the segments to recognise are in the store
    int attempts = 0;     // times a worker took the job since the last segment was kept
    int attemptsAt = 0;   // segments kept when attempts began to count
    QString createdAt;    // UTC, 2025-03-14T10:22:33Z
    QString completedAt;  // likewise; of a job that is ready or has failed
    bool lost = false;    // it failed when its call dir was gone already: nobody has taken it off the list

    bool unfinished() const;
};

namespace Status {
inline constexpr QStringView queued = u"queued";
inline constexpr QStringView transcribing = u"transcribing";
inline constexpr QStringView cleaning = u"cleaning";
inline constexpr QStringView analyzing = u"analyzing";
inline constexpr QStringView cancelled = u"cancelled";
inline constexpr QStringView failed = u"failed";
inline constexpr QStringView ready = u"ready";
} // namespace Status

// The job as one element of `history --json`: compact JSON, fields that have no value are null.
QByteArray historyEntry(const Job &job);

// A new identifier: rises with time, and two made at the same moment differ.
QString newJobId();

// A time of recording in the form of the contract: local, as the clock on the wall showed it.
QString contractTime(const QDateTime &time);

// This moment in the form of the contract for what is compared with other clocks: 2025-03-14T10:22:33Z.
QString contractNow();

} // namespace engine
