#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace engine {

// A recognised word and when it was said, in milliseconds from the start of the recording.
struct Word
{
    QString text;
    qint64 startMs = 0;
    qint64 endMs = 0;

    bool operator==(const Word &) const = default;
};
QStringList textsOf(const std::vector<Word> &words);

// A stretch of the recording that is recognised on its own. Segments of a job never overlap and are numbered
// from 0 in the order of time.
struct Segment
{
    int number = 0;
    qint64 startMs = 0;
    qint64 endMs = 0;
    std::optional<std::vector<Word>> words; // nothing until recognised; empty when nothing was said
    QString speaker = {};                   // empty: not known; not in the store

    bool kept() const { return words.has_value(); }
    QString text() const;
};

} // namespace engine
