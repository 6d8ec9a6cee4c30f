#include "list/Rows.h"

#include "settings/Fill.h"
#include "settings/L.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

QJsonObject startingRow()
{
    return {{u"local"_s, true}, {u"title"_s, L(u"Preparing…"_s)}, {u"status"_s, u"starting"_s}};
}

QJsonObject waitingRow(const WaitingEntry &entry, qsizetype index)
{
    const QString path = WaitingPath(entry);
    return {{u"local"_s, true},
            {u"waitIndex"_s, qint64(index)},
            {u"waitPath"_s, path},
            {u"status"_s, u"waiting"_s},
            {u"title"_s, QFileInfo(path).completeBaseName()}};
}

/// The engine's rows enter by their digest, which was made when the reply was read: rendering ten thousand
/// of them at every refresh is what the signature is there to avoid.
QString signatureOf(const QJsonArray &localRows, const JobsState &jobs)
{
    const QByteArray rows = QJsonDocument(localRows).toJson(QJsonDocument::Compact) + jobs.history->digest.toHex();
    const QByteArray latest = jobs.latestJob ? QJsonDocument(*jobs.latestJob).toJson(QJsonDocument::Compact) : QByteArray();
    return Fill(u"%@|%@|%@"_s, {QString::fromUtf8(rows), QString::fromUtf8(latest), jobs.waiting.size()});
}

} // namespace

QString RowKey(const QJsonObject &row)
{
    const QJsonValue id = row.value("id"_L1);
    if (id.isString())
        return id.toString();
    const QJsonValue waitPath = row.value("waitPath"_L1);
    return waitPath.isString() ? u"wait:"_s + waitPath.toString() : u"starting"_s;
}

RowList BuildRows(const JobsState &jobs)
{
    RowList list;
    QJsonArray local;
    list.counts = jobs.history->counts;
    if (jobs.starting) {
        local.append(startingRow());
        ++list.counts.active;
    }
    for (qsizetype index = 0; index < jobs.waiting.size(); ++index)
        local.append(waitingRow(jobs.waiting.at(index), index));
    list.rows.reserve(local.size() + jobs.history->listed.size());
    for (const QJsonValue &row : local)
        list.rows.append(row.toObject());
    list.rows += jobs.history->listed;
    list.signature = signatureOf(local, jobs);
    return list;
}

int RowIndex(const QList<QJsonObject> &rows, const QString &key)
{
    if (key.isEmpty())
        return -1;
    for (qsizetype index = 0; index < rows.size(); ++index) {
        if (RowKey(rows.at(index)) == key)
            return int(index);
    }
    return -1;
}

} // namespace tuppi
