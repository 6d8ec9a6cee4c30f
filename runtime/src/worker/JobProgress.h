#pragma once

#include <QString>

#include <optional>

namespace engine {

// How much of a job is done, in the form "12/40". It never goes back, also where the whole turns out larger
// than was thought, or where an older engine counted otherwise.
class JobProgress
{
public:
    // Goes on from what was shown before.
    explicit JobProgress(const QString &shown = {});

    // The text for so much of the whole; nothing where it is no other one.
    std::optional<QString> advance(qint64 done, qint64 whole);

private:
    QString m_text;
    qint64 m_done = 0;
    qint64 m_whole = 1;
};

// The work on a job, counted in seconds of speech, since segments differ in length. What is read before anything is
// recognised, and learnt of the speakers afterwards, counts as so many more. Each step's count goes on from the one
// before it.
class WorkMeter
{
public:
    WorkMeter() = default;
    WorkMeter(double recordingSeconds, qint64 speechMs, bool speakers);

    // While it is not known where speech is: as if it went from end to end.
    static WorkMeter ofUnread(double recordingSeconds, bool speakers);

    qint64 read(double seconds) const; // of the recording
    qint64 heard(qint64 ms) const;     // of the speech
    qint64 told(double share) const;   // of the work of telling speakers apart: 0 to 1
    qint64 whole() const;

private:
    double m_recordingSeconds = 0;
    qint64 m_speechMs = 0;
    qint64 m_speakerSeconds = 0;
};

} // namespace engine
