#include "store/Transcripts.h"

#include "store/Segments.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

// A null text would be kept as no value at all.
QString notNull(const QString &text)
{
    return text.isNull() ? u""_s : text;
}

QStringList texts(const QJsonValue &list)
{
    QStringList found;
    for (const QJsonValue &item : list.toArray())
        found.append(item.toString());
    return found;
}

// Kept as texts that were filled already by earlier versions.
QList<Remark> remarks(const QJsonValue &list)
{
    QList<Remark> found;
    for (const QJsonValue &item : list.toArray())
        found.append(item.isString() ? remark(item.toString())
                                     : remark(item[u"text"].toString(), texts(item[u"values"])));
    return found;
}

QVariant summaryToBytes(const std::optional<Summary> &summary)
{
    if (!summary)
        return {};
    QJsonArray missing;
    for (const Remark &remark : summary->missing)
        missing.append(QJsonObject{{u"text"_s, remark.format}, {u"values"_s, QJsonArray::fromStringList(remark.values)}});
    const QJsonObject object{{u"sentences"_s, QJsonArray::fromStringList(summary->sentences)},
                             {u"tasks"_s, QJsonArray::fromStringList(summary->tasks)},
                             {u"model"_s, summary->model},
                             {u"missing"_s, missing}};
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

std::optional<Summary> summaryFromBytes(const QVariant &value)
{
    if (value.isNull())
        return std::nullopt;
    const QJsonObject object = QJsonDocument::fromJson(value.toByteArray()).object();
    return Summary{texts(object[u"sentences"]), texts(object[u"tasks"]), object[u"model"].toString(),
                   remarks(object[u"missing"])};
}

std::vector<Line> keptLines(Database &database, qint64 job)
{
    QSqlQuery query = database.run(
        u"SELECT start_ms, end_ms, speaker, text, words FROM lines WHERE job = ? ORDER BY number"_s, {job});
    std::vector<Line> lines;
    while (query.next())
        lines.push_back({query.value(0).toLongLong(), query.value(1).toLongLong(), query.value(2).toString(),
                         query.value(3).toString(), wordsFromBytes(query.value(4).toByteArray())});
    return lines;
}

} // namespace

std::optional<Transcript> keptTranscript(Database &database, qint64 job)
{
    QSqlQuery query =
        database.run(u"SELECT clean, summary, revision FROM transcripts WHERE job = ?"_s, {job});
    if (!query.next())
        return std::nullopt;
    return Transcript{keptLines(database, job), query.value(0).toString(), summaryFromBytes(query.value(1)),
                      query.value(2).toInt()};
}

void keepTranscript(Database &database, qint64 job, const Transcript &transcript,
                    const std::vector<Line> &before)
{
    database.run(
        u"INSERT INTO transcripts (job, clean, summary, revision) VALUES (?, ?, ?, ?) ON CONFLICT (job) "
        "DO UPDATE SET clean = excluded.clean, summary = excluded.summary, revision = excluded.revision"_s,
        {job, notNull(transcript.clean), summaryToBytes(transcript.summary), transcript.revision});
    const std::vector<Line> &lines = transcript.lines;
    for (size_t number = 0; number < lines.size(); ++number) {
        const Line &line = lines[number];
        if (number < before.size() && before[number] == line)
            continue;
        database.run(u"REPLACE INTO lines (job, number, start_ms, end_ms, speaker, text, words) "
                     "VALUES (?, ?, ?, ?, ?, ?, ?)"_s,
                     {job, qint64(number), line.startMs, line.endMs,
                      line.speaker.isEmpty() ? QVariant() : QVariant(line.speaker), notNull(line.text),
                      wordsToBytes(line.words)});
    }
    database.run(u"DELETE FROM lines WHERE job = ? AND number >= ?"_s, {job, qint64(lines.size())});
}

void noteWritten(Database &database, qint64 job, int revision)
{
    database.run(u"UPDATE transcripts SET written = ? WHERE job = ?"_s, {revision, job});
}

std::vector<qint64> unwrittenJobs(Database &database)
{
    QSqlQuery query = database.run(u"SELECT job FROM transcripts WHERE written <> revision"_s);
    std::vector<qint64> jobs;
    while (query.next())
        jobs.push_back(query.value(0).toLongLong());
    return jobs;
}

} // namespace engine
