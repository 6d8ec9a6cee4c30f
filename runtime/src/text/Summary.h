#pragma once

#include "text/CleanText.h"

#include <QStringList>

namespace engine {

// What matters of a transcript: picked out, word for word and in the order in which it was said, or written by a text
// model.
struct Summary
{
    QStringList sentences;    // picked out: those that share most with the rest
    QStringList tasks;        // what is to be done, picked out with the name of who says it
    QString model = {};       // the text model that wrote it; empty: picked out
    QStringList missing = {}; // sentences that tell what it lacks
};

Summary extractSummary(const std::vector<Sentence> &sentences, const QString &language);

} // namespace engine
