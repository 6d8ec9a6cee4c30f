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

// The reading of the whole recording before anything is recognised, as a share of the work: in seconds that
// would be recognised in the same time.
qint64 planningSeconds(double recordingSeconds);

} // namespace engine
