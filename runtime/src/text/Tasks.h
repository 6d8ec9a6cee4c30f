#pragma once

#include "text/CleanText.h"

#include <QString>
#include <QStringList>

// Tasks as they were spoken: found by verbs of duty, requests, promises and dates.
namespace engine {

// Whether tasks can be told in this language.
bool tellsTasks(const QString &language);

// Whole sentences, word for word, each behind the name of whoever says it where that is known. An answer that only
// gives the date ("By Tuesday.") stands behind the task that it belongs to. Where there are very many, those with a
// date are kept.
QStringList extractTasks(const std::vector<Sentence> &sentences, const QString &language);

} // namespace engine
