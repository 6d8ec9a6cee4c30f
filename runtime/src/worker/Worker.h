#pragma once

#include "core/WorkerLock.h"
#include "recognise/Recogniser.h"
#include "store/Jobs.h"

namespace engine {

// Works off everything unfinished, one job at a time, as the only one of its kind; returns when nothing is
// left.
class Worker
{
public:
    explicit Worker(const Paths &paths);

    // The exit status. Throws Failure when the store cannot be used.
    int run();

private:
    std::optional<Job> takeJob();
    void work(const Job &job);
    void clearWork();
    void putDown(const Job &job);
    void fail(const Job &job, const QString &sentence);
    Recogniser &recogniserFor(const Job &job, const QString &language);

    Paths m_paths;
    Database m_database;
    WorkerLock m_lock;
    std::unique_ptr<Recogniser> m_recogniser;
};

} // namespace engine
