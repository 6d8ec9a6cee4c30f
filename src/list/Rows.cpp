#include "list/Rows.h"

#include "settings/Fill.h"
#include "settings/L.h"

#include <QFileInfo>
#include <QJsonDocument>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

QJsonObject startingRow()
{
    return {{u"local"_s, true}, {u"title"_s, L(u"Preparing…"_s)}, {u"status"_s, u"starting"_s}};
}

QJsonObject waitingRow(const QString &path, qsizetype index)
{
    return {{u"local"_s, true},
            {u"waitIndex"_s, qint64(index)},
            {u"waitPath"_s, path},
            {u"status"_s, u"waiting"_s},
            {u"title"_s, QFileInfo(path).completeBaseName()}};
}

/// The rows enter by what they are made of, the local ones by their keys and the engine's by the digest made
/// when the reply was read: rendering ten thousand of them at every refresh is what the signature is there to
/// avoid.
QString signatureOf(const QString &localKeys, const JobsState &jobs)
{
    const QString rows = localKeys + QString::fromLatin1(jobs.history->digest.toHex());
    const QByteArray latest = jobs.latestJob ? QJsonDocument(*jobs.latestJob).toJson(QJsonDocument::Compact) : QByteArray();
    return Fill(u"%@|%@|%@"_s, {rows, QString::fromUtf8(latest), jobs.waiting.size()});
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
    constexpr QChar end = QChar::Null; // no path holds it
    RowList list;
    QString localKeys;
    list.counts = jobs.history->counts;
    list.rows.reserve(jobs.waiting.size() + 1 + jobs.history->listed.size());
    if (jobs.starting) {
        list.rows.append(startingRow());
        localKeys += u"starting"_s + end;
        ++list.counts.active;
    }
    for (qsizetype index = 0; index < jobs.waiting.size(); ++index) {
        const QString path = WaitingPath(jobs.waiting.at(index));
        list.rows.append(waitingRow(path, index));
        localKeys += u"wait:"_s + path + end;
    }
    list.rows += jobs.history->listed;
    list.signature = signatureOf(localKeys, jobs);
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
