#pragma once

#include "text/Segment.h"
#include "text/Summary.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <utility>
#include <vector>

namespace engine {

// A line of a transcript, as people read and correct it. It begins as what was recognised in one segment.
struct Line
{
    qint64 startMs = 0;
    qint64 endMs = 0;
    QString speaker;         // empty: not known
    QString text;            // without line breaks; empty when the line was emptied
    std::vector<Word> words; // the words of the text and when they were said; of a corrected word: about when

    bool operator==(const Line &) const = default;
};

// What a recording has become, with every correction since.
struct Transcript
{
    std::vector<Line> lines;
    QString clean;                  // the clean text
    std::optional<Summary> summary; // nothing when none was asked for
    int revision = 0;               // rises with every correction
};

// One line for each segment in which something was said.
std::vector<Line> linesFrom(const std::vector<Segment> &segments);

// The names of those who speak, in the order in which they are heard first.
QStringList speakersOf(const std::vector<Line> &lines);

// The line with another text; words that it shares with the old one keep their times.
Line withText(const Line &line, const QString &text);

// Both parts of a line that is cut at this place of its text (in UTF-16 units), without the blanks there.
std::pair<Line, Line> cut(const Line &line, qsizetype place);

// One line of two; the speaker is the upper one's.
Line joined(const Line &upper, const Line &lower);

} // namespace engine
