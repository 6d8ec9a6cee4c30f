#include "app/Scheduler.h"

#include "settings/Val.h"

#include <algorithm>

namespace tuppi {

using namespace Qt::StringLiterals;

bool SomethingActive(const JobsState &jobs)
{
    return jobs.isHandingOver() || !jobs.history->active.isEmpty();
}

bool IsWorkUnderWay(const JobsState &jobs)
{
    return BusyExcept(jobs, {});
}

bool BusyExcept(const JobsState &jobs, const QString &id)
{
    const QList<QJsonObject> &active = jobs.history->active;
    return jobs.isHandingOver() || std::any_of(active.begin(), active.end(), [&](const QJsonObject &job) {
        return !IsTrue(job.value("paused"_L1)) && job.value("id"_L1).toString() != id;
    });
}

bool MayStartNext(const JobsState &jobs)
{
    if (jobs.waiting.isEmpty() || SomethingActive(jobs))
        return false;
    // A start without an engine would only cost the file its place; the files are better off waiting.
    if (jobs.engineBroken || jobs.settingUp)
        return false;
    // A history from before the last start shows an idle engine and lacks the job that it is busy with.
    if (jobs.startUnlisted)
        return false;
    // Before the first history it is unknown what the engine is busy with, and which job a start brings
    // about. The poll in flight ends by asking again.
    return jobs.loaded || !jobs.polling;
}

} // namespace tuppi
