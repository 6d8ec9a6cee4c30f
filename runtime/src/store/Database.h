#pragma once

#include "core/Failure.h"
#include "core/Paths.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>

#include <initializer_list>

class QSqlError;

namespace engine {

// Another program has kept the store for longer than is waited for it. Nothing was changed.
class StoreBusy : public Failure
{
public:
    explicit StoreBusy(const Failure &failure)
        : Failure(failure)
    {
    }
};

// The store: one connection, opened with the newest schema. Throws Failure for whatever goes wrong.
// Not to be touched by a forked child.
class Database
{
public:
    // Opens the store, makes it when it is missing and brings an older one to the newest schema. On a disk
    // that is full or can only be read, a store that is whole is still read; writing then fails.
    explicit Database(const Paths &paths);
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    const Paths &paths() const { return m_paths; }

    // Runs one statement with values bound in order.
    QSqlQuery run(const QString &sql, std::initializer_list<QVariant> values = {});

    // The first column of the first row, invalid when there is no row.
    QVariant value(const QString &sql, std::initializer_list<QVariant> values = {});

    // "ok", or what SQLite found wrong. Reads the whole store, but does not compare its indexes with it.
    QString integrity();

private:
    void open(const QString &name, const QString &options);
    void openForReading(const Failure &why);
    void close();
    void migrate();
    [[noreturn]] void fail(const QSqlError &error);

    Paths m_paths;
    QString m_name;
    bool m_unwritable = false; // the last error came from a disk that cannot be written
};

// A write transaction: taken at once, so that what was read inside it still holds when it is written.
// Rolled back unless committed.
class Transaction
{
public:
    explicit Transaction(Database &database);
    ~Transaction();
    Transaction(const Transaction &) = delete;
    Transaction &operator=(const Transaction &) = delete;

    void commit();

private:
    Database &m_database;
    bool m_open = true;
};

// The sentence for an error of the store.
Failure storeFailure(const QSqlError &error, const Paths &paths);

} // namespace engine
