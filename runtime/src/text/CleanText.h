#pragma once

#include "store/Segments.h"

#include <QString>

#include <vector>

namespace engine {

// One sentence of the clean text, and where in the recording it is.
struct Sentence
{
    QString text;
    qint64 startMs = 0;
    qint64 endMs = 0;
    bool startsParagraph = false;
};

// Sentences by the pauses that were spoken, with capitals and full stops; where the recogniser has written
// these itself, sentences as it has them. No word is added, dropped or replaced.
std::vector<Sentence> cleanSentences(const std::vector<Segment> &segments);

// The words as recognised, one segment a line: for when no cleaning is wanted.
QString plainText(const std::vector<Segment> &segments);

// Sentences joined into paragraphs, an empty line between them.
QString paragraphs(const std::vector<Sentence> &sentences);

} // namespace engine
