#pragma once

#include "app/JobsState.h"

#include <QJsonObject>
#include <QList>
#include <QString>

namespace tuppi {

/// The list of transcripts as one value: the file being started, the files waiting, the jobs under way, the
/// rest. A row is a dictionary; local rows have "local", engine rows are the history entries themselves.
struct RowList
{
    QList<QJsonObject> rows;
    RowCounts counts;
    QString signature;  ///< differs whenever any field of any row, the latest job or the queue's length does
};

/// A row's identity across refreshes.
QString RowKey(const QJsonObject &row);

/// The rows of the current state, freshly built.
RowList BuildRows(const JobsState &jobs);

/// Index of the first row with that key, -1 when there is none or the key is empty.
int RowIndex(const QList<QJsonObject> &rows, const QString &key);

} // namespace tuppi
