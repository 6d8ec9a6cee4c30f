#pragma once

#include "text/Segment.h"

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
    QString speaker = {}; // empty: not known
};

// "de" of "de-CH".
QString mainLanguage(const QString &language);

bool isEnglish(const QString &language);

// Sentences by the pauses that were spoken, or by the recogniser's own marks where it makes them, and by speakers;
// with capitals and full stops. English loses what is only hesitation, and gets figures and question marks; in other
// languages (`language` is a code such as "en") no word is added, dropped or replaced.
std::vector<Sentence> cleanSentences(const std::vector<Segment> &segments, const QString &language);

// The segments as lines of a transcript are written: where the recogniser knows no capitals, a line begins with one, and
// English has them for "I" and for names that are known. Else as they are.
std::vector<Segment> asLines(std::vector<Segment> segments, const QString &language);

// The words as recognised, one segment a line: for when no cleaning is wanted.
QString plainText(const std::vector<Segment> &segments);

// Sentences joined into paragraphs, an empty line between them.
QString paragraphs(const std::vector<Sentence> &sentences);

} // namespace engine
