#pragma once

#include "app/JobsState.h"

#include <QJsonObject>
#include <QString>

namespace tuppi {

/// The rows in their order: the file being started, the files waiting, the jobs under way, the rest. A row is a
/// dictionary, made when it is asked for; local rows have "local", engine rows are the history entries themselves.
struct Rows
{
    bool starting = false;
    WaitingQueue waiting;
    JobList jobs;

    qsizetype locals() const { return (starting ? 1 : 0) + waiting.size(); }
    qsizetype size() const { return locals() + jobs.size(); }
    bool isEmpty() const { return size() == 0; }
    QJsonObject at(qsizetype index) const;
    QJsonObject first() const { return at(0); }
    QJsonObject last() const { return at(size() - 1); }
    QString keyAt(qsizetype index) const;
    /// Empty for a row without one.
    QString titleAt(qsizetype index) const;
};

/// The list of transcripts as one value.
struct RowList
{
    Rows rows;
    RowCounts counts;
    QString signature;  ///< differs whenever any field of any row, the latest job or the queue's length does
};

/// A row's identity across refreshes.
QString RowKey(const QJsonObject &row);

/// The rows of the current state, freshly built.
RowList BuildRows(const JobsState &jobs);

/// Index of the first row with that key, -1 when there is none or the key is empty.
int RowIndex(const Rows &rows, const QString &key);

} // namespace tuppi
