#pragma once

#include "engine/JobList.h"
#include "engine/RunCallTimeout.h"

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QList>

#include <memory>
#include <optional>

namespace tuppi {

/// What the list needs to know of a set of rows without looking at each again.
struct RowCounts
{
    int active = 0;              ///< rows under way, the one being started included
    bool pausedWork = false;     ///< a job under way is paused
    int ready = 0;
};

/// The engine's jobs as the last usable history reply gave them, arranged for the list. Made off the main
/// thread, never changed afterwards, shared by everybody who reads it.
struct History
{
    JobList entries;             ///< those with an id, in the engine's order
    QList<QJsonObject> active;   ///< of these, the ones under way
    JobList listed;              ///< the visible ones, those under way first
    RowCounts counts;            ///< of the listed ones
    QByteArray digest;           ///< equal exactly when the listed entries are equal in every field
};

using HistoryPointer = std::shared_ptr<const History>;

/// The JSON object or array of a reply; nothing when the text is empty, is no JSON or has the other type.
std::optional<QJsonObject> ReadObject(const QByteArray &out);
std::optional<QJsonArray> ReadArray(const QByteArray &out);

/// Arranges history entries for the list.
History ArrangeHistory(const QJsonArray &jobs);

/// A history reply: its exit status and, when it was usable, the jobs. An unchanged reply gives `previous`
/// itself and is not parsed again. What arrives in pieces goes to a HistoryReader.
struct HistoryReply
{
    int status = -1;
    HistoryPointer history;  ///< null when the reply is no array
};
HistoryReply ReadHistory(const RawReply &raw, const HistoryPointer &previous);

/// The fields of the model list reply that the application keeps.
struct ModelList
{
    QJsonArray custom;
    QString textModel;
    QStringList ollamaModels;
};
std::optional<ModelList> ReadModelList(const QByteArray &out);

} // namespace tuppi
