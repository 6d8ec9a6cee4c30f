#pragma once

#include "store/Jobs.h"

#include <QElapsedTimer>

#include <functional>

namespace engine {

// Thrown when the job in hand was paused, cancelled or removed: put it down, it is not an error.
struct JobDropped
{
};

// The worker's hold on the job in hand: every change to it goes through here, and so does the question
// whether it is still wanted.
class JobControl
{
public:
    JobControl(Database &database, const Job &job);

    const Job &job() const { return m_job; }

    // To be called at least a few times a second; looks into the store when enough time has passed.
    // Throws JobDropped.
    void check();

    // Changes the job in a transaction, after what `within` does in the same one, and tells the watchers: at
    // once, or, for mere progress, at most twice a second. Throws JobDropped, with nothing written, and StoreBusy when
    // others keep the store for minutes; progress alone, without anything within, is passed over then, and sooner.
    void change(const std::function<void(Job &)> &change, const std::function<void()> &within = {});
    void progress(const std::function<void(Job &)> &change, const std::function<void()> &within = {});

    // Writes something that belongs to the job but shows in no query. Throws JobDropped, with nothing
    // written.
    void note(const std::function<void()> &within);

private:
    void write(const std::function<void(Job &)> &change, const std::function<void()> &within);
    void noteOnce(const std::function<void()> &within);
    Job wanted();
    void announce();

    Database &m_database;
    Job m_job;
    QElapsedTimer m_sinceCheck;
    QElapsedTimer m_sinceAnnounced;
    bool m_unannounced = false;
};

} // namespace engine
