#include "app/AppDelegate.h"

#include "engine/EngineErrors.h"
#include "list/Describe.h"

namespace tuppi {
namespace {

SummaryInput summaryInput(const JobsState &jobs, const ListState &list, const RowList &rows)
{
    SummaryInput input;
    if (!list.transientUntil.hasExpired())
        input.transientStatus = list.transientStatus;
    input.loaded = jobs.loaded;
    input.engineBroken = jobs.engineBroken;
    input.rowCount = rows.rows.size();
    input.counts = rows.counts;
    input.waiting = jobs.waiting.size();
    return input;
}

} // namespace

void AppDelegate::refresh()
{
    RowList rows = BuildRows(m_jobs);
    const QString summary = SummaryLine(summaryInput(m_jobs, m_list, rows));
    if (summary != m_list.summary) {
        m_list.summary = summary;
        Q_EMIT summaryChanged(summary);
    }
    if (rows.signature != m_list.snapshot.signature) {
        m_list.snapshot = std::move(rows);
        Q_EMIT rowsChanged();
    }
    Q_EMIT refreshed();
}

QJsonObject AppDelegate::rowWithKey(const QString &key) const
{
    const int index = RowIndex(m_list.snapshot.rows, key);
    return index < 0 ? QJsonObject() : m_list.snapshot.rows.at(index);
}

void AppDelegate::flash(const QString &text)
{
    constexpr qint64 flashMilliseconds = 4000;
    m_list.transientStatus = text;
    m_list.transientUntil.setRemainingTime(flashMilliseconds);
    m_list.summary = text;
    Q_EMIT summaryChanged(text);
    Q_EMIT flashed(text);
}

void AppDelegate::reportFailure(int status, const QString &err, const QString &title)
{
    if (status != 0)
        Q_EMIT failureReported(title, FailureDetail(err));
}

} // namespace tuppi
