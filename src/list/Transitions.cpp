#include "list/Transitions.h"

#include "engine/Stages.h"
#include "settings/L.h"

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

/// When the job ended; invalid when that is not told, or not with its time zone.
QDateTime completedAt(const QJsonObject &entry)
{
    const QDateTime date = QDateTime::fromString(entry.value("completed_at"_L1).toString(), Qt::ISODate);
    return date.timeSpec() == Qt::LocalTime ? QDateTime() : date;
}

/// Whether a ready transcript that was never announced is old news: it was ready before the application ran.
bool isOldNews(const QJsonObject &entry, const QDateTime &launchedAt, bool wasWorking)
{
    const QDateTime completed = completedAt(entry);
    return completed.isValid() ? completed <= launchedAt : !wasWorking;
}

Transition::Announcement announcementOf(const QJsonObject &entry, const Transition &transition,
                                        TransitionMemory &memory, bool wasWorking)
{
    using Announcement = Transition::Announcement;
    const bool isReady = transition.status == "ready"_L1;
    if (isReady && !memory.announced.contains(transition.id)) {
        const bool silent = isOldNews(entry, memory.launchedAt, wasWorking);
        memory.announced.insert(transition.id);
        return silent ? Announcement::None : Announcement::Ready;
    }
    if (!wasWorking)
        return Announcement::None;
    if (isReady) // announced before, and now finished again
        return Announcement::Ready;
    return transition.status == "failed"_L1 ? Announcement::Failed : Announcement::None;
}

} // namespace

QList<Transition> FindTransitions(TransitionMemory &memory, const QList<QJsonObject> &entries)
{
    QList<Transition> found;
    QHash<QString, QString> statuses;
    statuses.reserve(entries.size());
    for (const QJsonObject &entry : entries) {
        Transition transition;
        transition.id = entry.value("id"_L1).toString();
        if (transition.id.isEmpty())
            continue;
        transition.status = entry.value("status"_L1).toString();
        statuses.insert(transition.id, transition.status);
        std::optional<QString> before;
        if (memory.lastStatus) {
            if (const auto last = memory.lastStatus->constFind(transition.id); last != memory.lastStatus->cend())
                before = *last;
            transition.changed = before != transition.status;
        }
        const bool wasWorking = before && IsActiveStage(*before);
        transition.announcement = announcementOf(entry, transition, memory, wasWorking);
        if (!transition.changed && transition.announcement == Transition::Announcement::None)
            continue;
        transition.before = before.value_or(u"(new)"_s);
        transition.title = entry.value("title"_L1).toString(L(u"Recording"_s));
        found.append(transition);
    }
    memory.lastStatus = std::move(statuses);
    return found;
}

} // namespace tuppi
