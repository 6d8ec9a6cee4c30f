#pragma once

#include "text/CleanText.h"
#include "text/Summary.h"

#include <QString>

#include <functional>
#include <optional>
#include <vector>

// What a text model is asked about a transcript, and what is taken of its answers. The model is a function
// here.
namespace engine {

struct ModelQuestion
{
    QString system; // what it is to do
    QString text;   // of the transcript
    bool json = false;
};

// The answer; nothing when none came. What it throws is passed on.
using AskModel = std::function<std::optional<QString>(const ModelQuestion &)>;

// Parts done and parts in all.
using ShowParts = std::function<void(int done, int total)>;

// The clean text, part by part as the model writes it; a part that it got wrong stays as the sentences stand.
QString polishedText(const std::vector<Sentence> &sentences, const QString &language, const AskModel &ask,
                     const ShowParts &show);

struct WrittenSummary
{
    Summary summary;
    QString title; // empty: it had no idea
};

// Nothing when the model gave no useful answer at all. Parts of which it had none are told of in the summary.
std::optional<WrittenSummary> writtenSummary(const std::vector<Sentence> &sentences, const QString &language,
                                             const AskModel &ask, const ShowParts &show);

// For the summary that was written without the model's help then.
Remark gaveNothing(const QString &model);

} // namespace engine
