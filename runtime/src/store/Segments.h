#pragma once

#include "store/Database.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace engine {

// A recognised word and when it was said, in milliseconds from the start of the recording.
struct Word
{
    QString text;
    qint64 startMs = 0;
    qint64 endMs = 0;

    bool operator==(const Word &) const = default;
};
QStringList textsOf(const std::vector<Word> &words);

// A stretch of the recording that is recognised on its own. Segments of a job never overlap and are numbered
// from 0 in the order of time.
struct Segment
{
    int number = 0;
    qint64 startMs = 0;
    qint64 endMs = 0;
    std::optional<std::vector<Word>> words; // nothing until recognised; empty when nothing was said
    QString speaker = {};                   // empty: not known; not in the store

    bool kept() const { return words.has_value(); }
    QString text() const;
};

// Replaces the plan of a job. Inside the caller's transaction.
void planSegments(Database &database, qint64 job, const std::vector<Segment> &segments);

// Counts that work on the segment begins: what is recognised again, and how often, can be seen afterwards.
// Inside the caller's transaction.
void beginSegment(Database &database, qint64 job, int number);

// Keeps what was recognised. Inside the caller's transaction.
void keepSegment(Database &database, qint64 job, int number, const std::vector<Word> &words);

std::vector<Segment> segmentsOf(Database &database, qint64 job);
int keptCount(Database &database, qint64 job);

// Words as the store keeps them: a JSON array of [text, start, end].
QByteArray wordsToBytes(const std::vector<Word> &words);
std::vector<Word> wordsFromBytes(const QByteArray &bytes);

} // namespace engine
