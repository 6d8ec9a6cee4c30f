#pragma once

#include "text/CleanText.h"

#include <QStringList>

namespace engine {

// What matters of a transcript: picked out, word for word and in the order in which it was said, or written by a text
// model.
struct Summary
{
    QStringList sentences;    // picked out: those that share most with the rest
    QStringList tasks;        // what is to be done
    QString model = {};       // the text model that wrote it; empty: picked out
    QStringList missing = {}; // sentences that tell which parts it does not cover
};

Summary extractSummary(const std::vector<Sentence> &sentences);

} // namespace engine
