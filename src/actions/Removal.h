#pragma once

#include "list/Rows.h"

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

namespace tuppi {

/// Whether a row can leave the list: it is the engine's, and not under way.
bool IsRemovable(const QJsonObject &row);

/// The rows that Clear List takes, in their order.
JobList FinishedRows(const Rows &rows);

/// The ids of the rows that have one, in their order.
QStringList IdsOf(const JobList &rows);

/// A folder that is to go to the Trash, and what it is called when it could not go.
struct DoomedFolder
{
    QString path;
    QString title;  ///< of its row, else the folder's own name

    bool operator==(const DoomedFolder &) const = default;
};
QList<DoomedFolder> FoldersOf(const JobList &rows);

/// False for what no transcript can be: a relative path, and a folder that holds the home folder or the
/// transcripts folder `library`. An engine that is out of its mind must not take those along.
bool IsTranscriptFolder(const QString &path, const QString &library);

/// The transcripts folder: the one the engine told, else (`library` is empty) the one it starts with.
QString LibraryPath(const QString &library);

// Texts in the interface language

QString CancelTitle(const QJsonObject &row);
QString RemoveTitle(const QJsonObject &row);
/// For one or more rows.
QString ClearListTitle(qsizetype rows);
/// What the two ways to remove do; `library` as for LibraryPath().
QString RemoveDetail(const QString &library);
QString TrashTitle(qsizetype rows);
/// The line of a folder that stayed where it is.
QString TrashFailureLine(const DoomedFolder &folder, const QString &reason);

} // namespace tuppi
