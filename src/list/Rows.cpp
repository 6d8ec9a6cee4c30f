#include "list/Rows.h"

#include "settings/Fill.h"
#include "settings/L.h"

#include <QJsonDocument>
#include <QUrl>

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
            {u"title"_s, TitleOfFile(path)}};
}

/// Of the files that wait, in their order.
QString digestOf(const WaitingQueue &queue)
{
    const QString key = u"url"_s;
    size_t digest = 1;
    for (const WaitingEntry &entry : queue)
        digest = qHash(entry.value(key).toUrl(), digest);
    return QString::number(digest, 16);
}

/// The rows enter by what they are made of, the local ones by their files and the engine's by the digest made
/// when the reply was read: rendering ten thousand of them at every refresh is what the signature is there to
/// avoid.
QString signatureOf(const JobsState &jobs)
{
    const QString rows = (jobs.isHandingOver() ? u"starting "_s : QString()) + digestOf(jobs.waiting) + u' '
        + QString::fromLatin1(jobs.history->digest.toHex());
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

QJsonObject Rows::at(qsizetype index) const
{
    if (starting && index == 0)
        return startingRow();
    const qsizetype place = index - (starting ? 1 : 0);
    return place < waiting.size() ? waitingRow(WaitingPath(waiting.at(place)), place) : jobs.at(index - locals());
}

QString Rows::keyAt(qsizetype index) const
{
    const qsizetype job = index - locals();
    if (job >= 0)
        return jobs.noteAt(job).idIsText ? jobs.idAt(job) : RowKey(jobs.at(job));
    const qsizetype place = index - (starting ? 1 : 0);
    return place < 0 ? u"starting"_s : u"wait:"_s + WaitingPath(waiting.at(place));
}

QString Rows::titleAt(qsizetype index) const
{
    const qsizetype job = index - locals();
    return job >= 0 ? jobs.titleAt(job) : at(index).value("title"_L1).toString();
}

RowList BuildRows(const JobsState &jobs)
{
    RowList list;
    list.counts = jobs.history->counts;
    list.counts.active += jobs.isHandingOver();
    list.rows = {jobs.isHandingOver(), jobs.waiting, jobs.history->listed};
    list.signature = signatureOf(jobs);
    return list;
}

int RowIndex(const Rows &rows, const QString &key)
{
    if (key.isEmpty())
        return -1;
    const qsizetype locals = rows.locals();
    const bool isLocal = key == "starting"_L1 || key.startsWith("wait:"_L1);
    for (qsizetype index = 0; isLocal && index < locals; ++index) {
        if (rows.keyAt(index) == key)
            return int(index);
    }
    const qsizetype job = rows.jobs.indexOfId(key);
    return job < 0 ? -1 : int(locals + job);
}

} // namespace tuppi
