#pragma once

#include "text/CleanText.h"

#include <QStringList>

namespace engine {

// What was picked out of a transcript, word for word, in the order in which it was said.
struct Summary
{
    QStringList sentences; // those that share most with the rest
    QStringList tasks;     // those that speak of something to be done
};

Summary extractSummary(const std::vector<Sentence> &sentences);

} // namespace engine
