#pragma once

#include "store/Database.h"
#include "text/Segment.h"

#include <QByteArray>

namespace engine {

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
