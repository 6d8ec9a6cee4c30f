#pragma once

#include "text/Transcript.h"

#include <QString>

namespace engine {

// A text that was made of the lines (the clean text), with the correction of one of them carried over: where
// the line's words stand in it, words that were changed are changed there too, and the sentences, capitals
// and paragraphs around them stay. Where the text lacks some of the line's words, or has others for them, each
// change is carried over of which it holds what is around. The text as it was where the words are not found, or
// not found for certain.
QString withCorrectedLine(const QString &text, const std::vector<Line> &lines, size_t line,
                          const QString &corrected);

// How many words a text has, how many of them stand, in their order, in the line and around it, and over how many words
// there they are spread.
struct WordsFound
{
    qsizetype ofText = 0;
    qsizetype all = 0;
    qsizetype inLine = 0;
    qsizetype spread = 0;
};
WordsFound wordsFound(const QString &text, const std::vector<Line> &lines, size_t line);

} // namespace engine
