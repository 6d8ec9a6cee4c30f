#include "store/Schema.h"

#include "store/Database.h"

#include <array>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

// Entries stand apart from jobs so that the history reads nothing but what it prints.
void createFirstSchema(Database &database)
{
    database.run(uR"(CREATE TABLE jobs (
        seq INTEGER PRIMARY KEY AUTOINCREMENT,
        id TEXT NOT NULL UNIQUE,
        status TEXT NOT NULL CHECK (status IN
            ('queued', 'transcribing', 'cleaning', 'analyzing', 'cancelled', 'failed', 'ready')),
        paused INTEGER NOT NULL DEFAULT 0,
        hidden INTEGER NOT NULL DEFAULT 0,
        title TEXT NOT NULL,
        call_dir TEXT NOT NULL,
        audio TEXT NOT NULL,
        error TEXT,
        recorded_at TEXT NOT NULL,
        duration_seconds REAL,
        engine TEXT,
        recogniser TEXT,
        engine_choice TEXT NOT NULL,
        language_choice TEXT NOT NULL,
        language TEXT NOT NULL,
        speakers INTEGER NOT NULL,
        clean INTEGER NOT NULL,
        analyze INTEGER NOT NULL,
        progress TEXT,
        planned INTEGER NOT NULL DEFAULT 0,
        attempts INTEGER NOT NULL DEFAULT 0,
        attempts_at INTEGER NOT NULL DEFAULT 0,
        created_at TEXT NOT NULL,
        completed_at TEXT))"_s);
    database.run(uR"(CREATE INDEX unfinished ON jobs (seq)
        WHERE status IN ('queued', 'transcribing', 'cleaning', 'analyzing'))"_s);
    database.run(uR"(CREATE TABLE entries (
        seq INTEGER PRIMARY KEY REFERENCES jobs (seq) ON DELETE CASCADE,
        entry BLOB NOT NULL))"_s);
    database.run(uR"(CREATE TABLE segments (
        job INTEGER NOT NULL REFERENCES jobs (seq) ON DELETE CASCADE,
        number INTEGER NOT NULL,
        start_ms INTEGER NOT NULL,
        end_ms INTEGER NOT NULL,
        attempts INTEGER NOT NULL DEFAULT 0,
        words BLOB,
        PRIMARY KEY (job, number)) WITHOUT ROWID)"_s);
    database.run(u"CREATE TABLE settings (name TEXT PRIMARY KEY, value TEXT NOT NULL) WITHOUT ROWID"_s);
}

// What became of the segments: corrected lines, and the texts made of them. A job that was ready before has
// none of this until its first correction.
void addTranscripts(Database &database)
{
    database.run(uR"(CREATE TABLE transcripts (
        job INTEGER PRIMARY KEY REFERENCES jobs (seq) ON DELETE CASCADE,
        clean TEXT NOT NULL,
        summary BLOB,
        revision INTEGER NOT NULL,
        written INTEGER NOT NULL DEFAULT 0))"_s);
    database.run(u"CREATE INDEX unwritten ON transcripts (job) WHERE written <> revision"_s);
    database.run(uR"(CREATE TABLE lines (
        job INTEGER NOT NULL REFERENCES jobs (seq) ON DELETE CASCADE,
        number INTEGER NOT NULL,
        start_ms INTEGER NOT NULL,
        end_ms INTEGER NOT NULL,
        speaker TEXT,
        text TEXT NOT NULL,
        words BLOB NOT NULL,
        PRIMARY KEY (job, number)) WITHOUT ROWID)"_s);
}

// Answers of the text model, until the job is ready.
void addAnswers(Database &database)
{
    database.run(uR"(CREATE TABLE answers (
        job INTEGER NOT NULL REFERENCES jobs (seq) ON DELETE CASCADE,
        question TEXT NOT NULL,
        answer TEXT NOT NULL,
        PRIMARY KEY (job, question)) WITHOUT ROWID)"_s);
}

// A job that failed for want of its call dir stays in the list, with the sentence that says so.
void addLost(Database &database)
{
    database.run(u"ALTER TABLE jobs ADD COLUMN lost INTEGER NOT NULL DEFAULT 0"_s);
}

// Step n leads from version n to version n + 1. A step that was ever released is never edited.
constexpr std::array migrations = {&createFirstSchema, &addTranscripts, &addAnswers, &addLost};
constexpr int versionWithLost = 4;

} // namespace

int newestSchema()
{
    return int(migrations.size());
}

void showListAsNewest(Database &database)
{
    if (database.value(u"PRAGMA user_version"_s).toInt() >= versionWithLost)
        return;
    database.run(u"PRAGMA temp_store=MEMORY"_s);
    database.run(u"CREATE TEMP VIEW jobs AS SELECT *, 0 AS lost FROM main.jobs"_s);
}

bool conditionsHold(Database &database)
{
    return database
        .value(u"SELECT seq FROM jobs WHERE status NOT IN "
               "('queued', 'transcribing', 'cleaning', 'analyzing', 'cancelled', 'failed', 'ready') LIMIT 1"_s)
        .isNull();
}

void bringToNewest(Database &database)
{
    const int found = database.value(u"PRAGMA user_version"_s).toInt();
    if (found > newestSchema())
        throw Failure(
            u"The list of transcripts was written by a newer version of this program. Update it to go on."_s);
    for (int version = found; version < newestSchema(); ++version)
        migrations[size_t(version)](database);
    database.run(u"PRAGMA user_version = %1"_s.arg(newestSchema()));
}

} // namespace engine
