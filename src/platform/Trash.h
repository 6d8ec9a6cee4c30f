#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>

namespace tuppi {

enum class TrashOutcome {
    Moved,
    Gone,       ///< there is nothing at that path
    Forbidden,  ///< the person may not take it away from where it is
    NoTrash,    ///< its drive has no trash and none could be made; the home folder's is not for another drive
    Failed,
};

struct TrashResult
{
    TrashOutcome outcome = TrashOutcome::Failed;
    QString systemError;  ///< the system's own words for what failed; may be empty

    bool operator==(const TrashResult &) const = default;
};

/// Moves a file or a folder to the desktop's trash, from where it can be restored. It is moved whole or not at
/// all, and never copied to another drive. May be called from any thread.
TrashResult MoveToTrash(const QString &path);

/// Moves one after the other off the main thread and calls `then` on `context`'s thread with a result for
/// each, in their order. A context that is gone by then is not called; all are moved all the same.
void MoveAllToTrash(const QStringList &paths, QObject *context, std::function<void(const QList<TrashResult> &)> then);

} // namespace tuppi
