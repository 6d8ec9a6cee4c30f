#include "app/StartRecord.h"

#include <QSet>

#include <algorithm>

namespace tuppi {

using namespace Qt::StringLiterals;

QVariantMap StoredStart(const StartRecord &record)
{
    QVariantMap stored = StoredEntry(record.entry);
    if (record.knownJobs)
        stored.insert(u"knownJobs"_s, *record.knownJobs);
    return stored;
}

std::optional<StartRecord> RestoredStart(const QVariant &stored)
{
    const QVariantMap record = stored.toMap();
    if (record.value(u"path"_s).toString().isEmpty())
        return std::nullopt;
    StartRecord start{EntryFromStored(record), std::nullopt};
    if (record.contains(u"knownJobs"_s))
        start.knownJobs = record.value(u"knownJobs"_s).toStringList();
    return start;
}

QStringList JobIds(const History &history)
{
    QStringList ids;
    ids.reserve(history.entries.size());
    for (qsizetype index = 0; index < history.entries.size(); ++index)
        ids.append(history.entries.idAt(index));
    return ids;
}

StartFate FateOfStart(const StartRecord &record, const History &history, bool commandEnded)
{
    // Without a list to compare with, a file transcribed twice is the smaller harm.
    if (record.knownJobs) {
        const QSet<QString> known(record.knownJobs->begin(), record.knownJobs->end());
        const QStringList ids = JobIds(history);
        if (std::any_of(ids.begin(), ids.end(), [&](const QString &id) { return !known.contains(id); }))
            return StartFate::Taken;
    }
    return commandEnded ? StartFate::NotTaken : StartFate::Unknown;
}

} // namespace tuppi
