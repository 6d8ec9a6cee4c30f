#include "store/Jobs.h"

#include "store/Settings.h"

#include <QFile>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <limits>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

const QString columns =
    u"seq, id, status, paused, hidden, title, call_dir, audio, error, recorded_at, duration_seconds, "
    "engine, recogniser, engine_choice, language_choice, language, speakers, clean, analyze, "
    "progress, planned, attempts, attempts_at, created_at, completed_at, lost"_s;

Job jobFrom(const QSqlQuery &row)
{
    int column = 0;
    const auto next = [&] { return row.value(column++); };
    Job job;
    job.seq = next().toLongLong();
    job.id = next().toString();
    job.status = next().toString();
    job.paused = next().toBool();
    job.hidden = next().toBool();
    job.title = next().toString();
    job.callDir = next().toString();
    job.audio = next().toString();
    job.error = next().toString();
    job.recordedAt = next().toString();
    if (const QVariant duration = next(); !duration.isNull())
        job.durationSeconds = duration.toDouble();
    job.engine = next().toString();
    job.recogniser = next().toString();
    job.engineChoice = next().toString();
    job.languageChoice = next().toString();
    job.language = next().toString();
    job.speakers = next().toBool();
    job.clean = next().toBool();
    job.analyze = next().toBool();
    job.progress = next().toString();
    job.planned = next().toBool();
    job.attempts = next().toInt();
    job.attemptsAt = next().toInt();
    job.createdAt = next().toString();
    job.completedAt = next().toString();
    job.lost = next().toBool();
    return job;
}

std::optional<Job> oneJob(Database &database, const QString &where,
                          std::initializer_list<QVariant> values = {})
{
    const QString sql = u"SELECT "_s + columns + u" FROM jobs "_s + where + u" LIMIT 1"_s;
    QSqlQuery query = database.run(sql, values);
    if (!query.next())
        return std::nullopt;
    return jobFrom(query);
}

std::vector<Job> allJobs(Database &database, const QString &condition)
{
    QSqlQuery query =
        database.run(u"SELECT "_s + columns + u" FROM jobs WHERE "_s + condition + u" ORDER BY seq"_s);
    std::vector<Job> jobs;
    while (query.next())
        jobs.push_back(jobFrom(query));
    return jobs;
}

QVariant orNull(const QString &text)
{
    return text.isEmpty() ? QVariant() : QVariant(text);
}

QVariant orNull(const std::optional<double> &number)
{
    return number ? QVariant(*number) : QVariant();
}

// As historyEntry() writes it.
QString hiddenMark(bool hidden)
{
    return hidden ? u"\"hidden\":true"_s : u"\"hidden\":false"_s;
}

const QString unfinished = u"status IN ('queued', 'transcribing', 'cleaning', 'analyzing')"_s;

// Of places (a job's number and its call dir, one behind the other), those whose folder alone is gone: their
// numbers, for a list in a statement. Nothing in the library is while that is away.
QByteArray thrownAway(const QByteArray &places, const QByteArray &away)
{
    QByteArrayList gone;
    for (const QByteArray &place : places.split('\0')) {
        const QByteArray folder = place.mid(place.indexOf('/'));
        if (folder.isEmpty() || ::access(folder.constData(), F_OK) == 0 || errno != ENOENT)
            continue;
        const QByteArray parent = folder.left(folder.lastIndexOf('/') + 1);
        if (parent != away && ::access(parent.constData(), F_OK) == 0)
            gone.append(place.left(place.indexOf('/')));
    }
    return gone.join(',');
}

QByteArray entriesWithout(Database &database, const QByteArray &gone, qint64 first, qint64 before)
{
    const QString sql = u"SELECT CAST(group_concat(entry, ?) AS BLOB) FROM (SELECT entry FROM entries WHERE "
                        "seq >= ? AND seq < ? AND seq NOT IN (%1) ORDER BY seq DESC)"_s;
    return database.value(sql.arg(QString::fromLatin1(gone)), {u",\n"_s, first, before}).toByteArray();
}

} // namespace

void insertJob(Database &database, Job &job)
{
    QSqlQuery query = database.run(
        uR"(INSERT INTO jobs (id, status, title, call_dir, audio, recorded_at, engine_choice, language_choice,
            language, speakers, clean, analyze, created_at) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?))"_s,
        {job.id, job.status, job.title, job.callDir, job.audio, job.recordedAt, job.engineChoice,
         job.languageChoice, job.language, int(job.speakers), int(job.clean), int(job.analyze),
         job.createdAt});
    job.seq = query.lastInsertId().toLongLong();
    updateJob(database, job);
}

void updateJob(Database &database, const Job &job)
{
    database.run(
        uR"(UPDATE jobs SET status = ?, paused = ?, hidden = ?, title = ?, call_dir = ?, audio = ?, error = ?,
            recorded_at = ?, duration_seconds = ?, engine = ?, recogniser = ?, language = ?, progress = ?,
            planned = ?, attempts = ?, attempts_at = ?, completed_at = ?, lost = ? WHERE seq = ?)"_s,
        {job.status, int(job.paused), int(job.hidden), job.title, job.callDir, job.audio, orNull(job.error),
         job.recordedAt, orNull(job.durationSeconds), orNull(job.engine), orNull(job.recogniser),
         job.language, orNull(job.progress), int(job.planned), job.attempts, job.attemptsAt,
         orNull(job.completedAt), int(job.lost), job.seq});
    // The newest entry is most of what changes; replacing only what differs spares the journal.
    database.run(u"INSERT INTO entries (seq, entry) VALUES (?, ?) "
                 "ON CONFLICT (seq) DO UPDATE SET entry = excluded.entry WHERE entry <> excluded.entry"_s,
                 {job.seq, historyEntry(job)});
}

std::optional<Job> jobById(Database &database, const QString &id)
{
    return oneJob(database, u"WHERE id = ?"_s, {id});
}

Job requireJob(Database &database, const QString &id)
{
    std::optional<Job> job = jobById(database, id);
    if (!job)
        throw Failure(u"There is no transcription with the number “"_s + id + u"”."_s);
    return *std::move(job);
}

std::optional<Job> jobBySeq(Database &database, qint64 seq)
{
    return oneJob(database, u"WHERE seq = ?"_s, {seq});
}

bool hasCallDirNamed(Database &database, const QString &name)
{
    const QString end = u'/' + name;
    return oneJob(database, u"WHERE substr(call_dir, -length(?)) = ?"_s, {end, end}).has_value();
}

QSet<QString> callDirs(Database &database)
{
    QSqlQuery query = database.run(u"SELECT call_dir FROM jobs"_s);
    QSet<QString> folders;
    while (query.next())
        folders.insert(query.value(0).toString());
    return folders;
}

bool hideAll(Database &database, bool hidden)
{
    const QString which = hidden ? u" WHERE hidden = 0 AND NOT "_s + unfinished : u" WHERE hidden = 1"_s;
    // Ten thousand jobs one by one would take a second. No text in an entry looks like this: its quotes are escaped.
    database.run(u"UPDATE entries SET entry = CAST(replace(CAST(entry AS TEXT), ?, ?) AS BLOB) "
                 "WHERE seq IN (SELECT seq FROM jobs"_s +
                     which + u')',
                 {hiddenMark(!hidden), hiddenMark(hidden)});
    return database.run(u"UPDATE jobs SET hidden = %1"_s.arg(int(hidden)) + which).numRowsAffected() > 0;
}

std::vector<Job> unfinishedJobs(Database &database)
{
    return allJobs(database, unfinished);
}

std::vector<Job> readyJobs(Database &database)
{
    return allJobs(database, u"status = 'ready'"_s);
}

std::optional<Job> newestJob(Database &database)
{
    return oneJob(database, u"ORDER BY seq DESC"_s);
}

std::optional<Job> nextJob(Database &database)
{
    return oneJob(database, u"WHERE "_s + unfinished + u" AND paused = 0 ORDER BY seq"_s);
}

void noteTaken(Database &database, qint64 seq)
{
    database.run(u"INSERT INTO settings (name, value) VALUES ('taken', ?) "
                 "ON CONFLICT (name) DO UPDATE SET value = excluded.value"_s,
                 {QString::number(seq)});
}

std::optional<Job> latestJob(Database &database)
{
    // One that was paused in the middle and goes on again waits there for as long as another is worked on.
    const QString taken = u"(SELECT CAST(value AS INTEGER) FROM settings WHERE name = 'taken')"_s;
    const QString order = u" ORDER BY paused, status = 'queued', seq <> "_s + taken + u", seq"_s;
    if (std::optional<Job> job = oneJob(database, u"WHERE "_s + unfinished + order))
        return job;
    return newestJob(database);
}

void forEachEntries(Database &database, const std::function<void(const QByteArray &)> &take)
{
    // SQLite joins the texts of a block faster than ten thousand rows come up through the layers above it.
    const QString block =
        u"SELECT CAST(group_concat(entry, ?) AS BLOB), min(seq), CAST(group_concat(place, char(0)) AS BLOB) "
        u"FROM "
        "(SELECT seq, entry, CASE WHEN "_s +
        unfinished +
        u" OR lost THEN NULL ELSE seq || call_dir END AS place FROM entries JOIN jobs USING (seq) WHERE seq < ? "
        "ORDER BY seq DESC LIMIT 256)"_s;
    const Library library = libraryInUse(database);
    const QByteArray away = isAway(library) ? QFile::encodeName(library.folder + u'/') : QByteArray();
    database.run(u"BEGIN"_s);
    for (qint64 before = std::numeric_limits<qint64>::max();;) {
        QSqlQuery query = database.run(block, {u",\n"_s, before});
        if (!query.next() || query.isNull(1))
            break;
        const qint64 last = query.value(1).toLongLong();
        const QByteArray gone = thrownAway(query.value(2).toByteArray(), away);
        const QByteArray entries =
            gone.isEmpty() ? query.value(0).toByteArray() : entriesWithout(database, gone, last, before);
        if (!entries.isEmpty())
            take(entries);
        before = last;
    }
    database.run(u"COMMIT"_s);
}

Job changeJob(Database &database, const QString &id, const std::function<void(Job &)> &change)
{
    Transaction transaction(database);
    Job job = requireJob(database, id);
    change(job);
    updateJob(database, job);
    transaction.commit();
    announceChange(database.paths());
    return job;
}

void announceChange(const Paths &paths)
{
    const QByteArray part = QFile::encodeName(paths.store + u"/changed.%1"_s.arg(::getpid()));
    const QByteArray whole = QFile::encodeName(paths.changed);
    std::FILE *file = std::fopen(part.constData(), "we");
    if (!file)
        return;
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    std::fprintf(file, "%lld\n", static_cast<long long>(std::chrono::nanoseconds(now).count()));
    // Renamed also where a full disk had no room for the number: the rename is what a watcher sees.
    std::fclose(file);
    if (std::rename(part.constData(), whole.constData()) != 0)
        std::remove(part.constData());
}

} // namespace engine
