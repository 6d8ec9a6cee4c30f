#include "list/Transitions.h"

#include "engine/Stages.h"
#include "settings/L.h"

#include <QHash>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

/// Statuses by id.
using Statuses = QHash<QString, QString>;
using Blocks = QSet<const JobBlock *>;

Blocks blocksOf(const JobList &jobs)
{
    Blocks blocks;
    for (const JobBlockPointer &block : jobs.blocks())
        blocks.insert(block.get());
    return blocks;
}

/// Calls `look` with the index of every job that has an id and does not stand in one of those blocks.
template <typename Look> void forJobsOutside(const Blocks &blocks, const JobList &jobs, Look look)
{
    for (qsizetype index = 0; index < jobs.size(); ++index) {
        if (jobs.noteAt(index).idSize > 0 && !blocks.contains(&jobs.blockAt(index)))
            look(index);
    }
}

/// Whether a ready transcript that was never announced is old news: it was ready before the application ran.
bool isOldNews(const JobNote &job, const QDateTime &launchedAt, bool wasWorking)
{
    const bool told = job.completedAt != JobNote::unknownTime;
    return told ? job.completedAt <= launchedAt.toMSecsSinceEpoch() : !wasWorking;
}

Transition::Announcement announcementOf(const JobNote &job, const QString &status, bool wasAnnounced, bool wasWorking,
                                        const QDateTime &launchedAt)
{
    using Announcement = Transition::Announcement;
    const bool isReady = status == "ready"_L1;
    if (isReady && !wasAnnounced)
        return isOldNews(job, launchedAt, wasWorking) ? Announcement::None : Announcement::Ready;
    if (!wasWorking)
        return Announcement::None;
    if (isReady) // announced before, and now finished again
        return Announcement::Ready;
    return status == "failed"_L1 ? Announcement::Failed : Announcement::None;
}

QString titleOf(const JobList &entries, qsizetype index)
{
    return entries.at(index).value("title"_L1).toString(L(u"Recording"_s));
}

/// Of the first reply, in which nothing has changed: what became ready since the launch.
QList<Transition> firstTransitions(const TransitionMemory &memory, const JobList &entries)
{
    QList<Transition> found;
    for (qsizetype index = 0; index < entries.size(); ++index) {
        const JobNote &job = entries.noteAt(index);
        const JobBlock &block = entries.blockAt(index);
        if (job.idSize == 0 || block.status(job) != "ready" || isOldNews(job, memory.launchedAt, false))
            continue;
        found.append({entries.idAt(index), titleOf(entries, index), {}, entries.statusAt(index), false,
                      Transition::Announcement::Ready});
    }
    return found;
}

QList<Transition> laterTransitions(TransitionMemory &memory, const JobList &entries)
{
    Statuses before;
    forJobsOutside(blocksOf(entries), *memory.last,
                   [&](qsizetype index) { before.insert(memory.last->idAt(index), memory.last->statusAt(index)); });
    Statuses now;
    QList<Transition> found;
    forJobsOutside(blocksOf(*memory.last), entries, [&](qsizetype index) {
        const QString id = entries.idAt(index);
        const QString status = entries.statusAt(index);
        now.insert(id, status);
        const auto last = before.constFind(id);
        const bool isNew = last == before.cend();
        const bool wasAnnounced = memory.onceReady.contains(id) || (!isNew && *last == "ready"_L1);
        Transition transition{id, {}, isNew ? u"(new)"_s : *last, status, isNew || *last != status,
                              announcementOf(entries.noteAt(index), status, wasAnnounced, !isNew && IsActiveStage(*last),
                                             memory.launchedAt)};
        if (!transition.changed && transition.announcement == Transition::Announcement::None)
            return;
        if (transition.announcement != Transition::Announcement::None)
            transition.title = titleOf(entries, index); // opens the job
        found.append(transition);
    });
    for (auto last = before.cbegin(); last != before.cend(); ++last) {
        if (*last == "ready"_L1 && now.value(last.key()) != "ready"_L1)
            memory.onceReady.insert(last.key());
    }
    return found;
}

} // namespace

QList<Transition> FindTransitions(TransitionMemory &memory, const JobList &entries)
{
    const QList<Transition> found =
        memory.last ? laterTransitions(memory, entries) : firstTransitions(memory, entries);
    memory.last = entries;
    return found;
}

} // namespace tuppi
