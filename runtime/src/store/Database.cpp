#include "store/Database.h"

#include "core/FileDescriptor.h"
#include "core/Files.h"
#include "store/Schema.h"

#include <QFile>
#include <QFileInfo>
#include <QSqlError>
#include <QUrl>

#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

enum SqliteCode {
    Busy = 5,
    Locked = 6,
    ReadOnly = 8,
    InputOutput = 10,
    Corrupt = 11,
    Full = 13,
    CannotOpen = 14,
    NotADatabase = 26
};

QString nextConnectionName()
{
    static std::atomic_int counter = 0;
    return u"store%1"_s.arg(counter++);
}

} // namespace

Failure storeFailure(const QSqlError &error, const Paths &paths)
{
    const int code = error.nativeErrorCode().toInt() & 0xff;
    const QString where = u" (“"_s + paths.database + u"”)"_s;
    switch (code) {
    case Full:
        return Failure(
            u"The list of transcripts could not be written: the disk is full. Make room and try again."_s);
    case ReadOnly:
        return Failure(u"The list of transcripts can only be read, not written"_s + where +
                       u". Check the disk and who may write there."_s);
    case Corrupt:
    case NotADatabase:
        // SQLite says so as well when the disk refuses to read.
        return Failure(
            u"The list of transcripts could not be read: it is damaged, or its disk fails"_s + where +
            u". It was left as it is, and the transcripts are still in their folders. Try again; if that never helps, "
            u"move that file away to start a new list."_s);
    case Busy:
    case Locked:
        return Failure(u"The list of transcripts is in use by another program for too long. Try again."_s);
    case InputOutput:
        return Failure(u"The disk reported an error at the list of transcripts"_s + where + u"."_s);
    case CannotOpen:
        return Failure(u"The list of transcripts could not be opened"_s + where + u"."_s);
    default:
        return Failure(u"The list of transcripts could not be used: "_s + error.text());
    }
}

Database::Database(const Paths &paths)
    : m_paths(paths)
    , m_name(nextConnectionName())
{
    try {
        makeFolder(paths.store, u"The engine's folder “"_s + paths.store + u"” could not be made"_s);
        open(paths.database, u"QSQLITE_BUSY_TIMEOUT=15000"_s);
        migrate();
    } catch (const Failure &failure) {
        close();
        if (!m_unwritable)
            throw;
        openForReading(failure);
    }
}

Database::~Database()
{
    close();
}

void Database::open(const QString &name, const QString &options)
{
    QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, m_name);
    database.setConnectOptions(options);
    database.setDatabaseName(name);
    if (!database.open())
        fail(database.lastError());
    run(u"PRAGMA synchronous=FULL"_s);
    run(u"PRAGMA foreign_keys=ON"_s);
}

// Without a journal beside it the store is one file that can be read as it stands, where opening it for
// writing would need room for a journal.
void Database::openForReading(const Failure &why)
{
    const QFileInfo journal(m_paths.database + u"-wal"_s);
    if (!QFileInfo::exists(m_paths.database) || (journal.exists() && journal.size() > 0))
        throw why;
    try {
        const QByteArray name = QUrl::toPercentEncoding(m_paths.database, "/");
        open(u"file:"_s + QString::fromLatin1(name) + u"?immutable=1"_s,
             u"QSQLITE_OPEN_URI;QSQLITE_OPEN_READONLY"_s);
        const int version = value(u"PRAGMA user_version"_s).toInt();
        if (version > 0 && version <= newestSchema()) {
            showListAsNewest(*this);
            return;
        }
    } catch (const Failure &) {
        // The first reason is the one to tell.
    }
    close();
    throw why;
}

void Database::close()
{
    QSqlDatabase::database(m_name, false).close();
    QSqlDatabase::removeDatabase(m_name);
}

void Database::migrate()
{
    if (value(u"PRAGMA user_version"_s).toInt() == newestSchema())
        return;
    // SQLite does not wait when two programs change the journal mode at once, so they queue up here.
    const QByteArray lockName = QFile::encodeName(m_paths.store + u"/schema.lock"_s);
    const FileDescriptor lock(::open(lockName.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
    if (!lock.valid() || ::flock(lock.get(), LOCK_EX) != 0)
        throw systemFailure(u"The list of transcripts could not be prepared"_s, errno);
    value(u"PRAGMA journal_mode=WAL"_s);
    Transaction transaction(*this);
    bringToNewest(*this);
    transaction.commit();
}

void Database::fail(const QSqlError &error)
{
    const int code = error.nativeErrorCode().toInt() & 0xff;
    m_unwritable = code == ReadOnly || code == Full || code == InputOutput || code == CannotOpen;
    if (code == Busy || code == Locked)
        throw StoreBusy(storeFailure(error, m_paths));
    throw storeFailure(error, m_paths);
}

QSqlQuery Database::run(const QString &sql, std::initializer_list<QVariant> values)
{
    QSqlQuery query(QSqlDatabase::database(m_name, false));
    query.setForwardOnly(true);
    if (!query.prepare(sql))
        fail(query.lastError());
    for (const QVariant &bound : values)
        query.addBindValue(bound);
    if (!query.exec())
        fail(query.lastError());
    return query;
}

QVariant Database::value(const QString &sql, std::initializer_list<QVariant> values)
{
    QSqlQuery query = run(sql, values);
    return query.next() ? query.value(0) : QVariant();
}

QString Database::integrity()
{
    // SQLite's own look at the conditions makes their lists anew for each row, and costs more than all the rest.
    run(u"PRAGMA ignore_check_constraints=ON"_s);
    const QString verdict = value(u"PRAGMA quick_check(1)"_s).toString();
    run(u"PRAGMA ignore_check_constraints=OFF"_s);
    return verdict == u"ok" && !conditionsHold(*this) ? u"a job has an unknown status"_s : verdict;
}

Transaction::Transaction(Database &database)
    : m_database(database)
{
    m_database.run(u"BEGIN IMMEDIATE"_s);
}

Transaction::~Transaction()
{
    if (!m_open)
        return;
    try {
        m_database.run(u"ROLLBACK"_s);
    } catch (const Failure &) {
        // SQLite has already rolled back by itself after a full disk or an input-output error.
    }
}

void Transaction::commit()
{
    m_database.run(u"COMMIT"_s);
    m_open = false;
}

} // namespace engine
