#include "text/Transcript.h"

#include "text/Words.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

// Lets the words from `first` to before `end` share a stretch of time.
void share(std::vector<Word> &words, size_t first, size_t end, qint64 startMs, qint64 endMs)
{
    const auto count = qint64(end - first);
    for (size_t i = first; i < end; ++i) {
        words[i].startMs = startMs + (endMs - startMs) * qint64(i - first) / count;
        words[i].endMs = startMs + (endMs - startMs) * qint64(i - first + 1) / count;
    }
}

// Words of a new text: those that were said keep their times, others share the time in between.
std::vector<Word> timed(const QStringList &texts, const std::vector<Word> &known, qint64 startMs,
                        qint64 endMs)
{
    std::vector<Word> words;
    for (const QString &text : texts)
        words.push_back({text, startMs, endMs});
    std::vector<std::pair<size_t, size_t>> kept = commonWords(textsOf(known), texts);
    kept.emplace_back(known.size(), words.size());
    size_t fromKnown = 0;
    size_t from = 0;
    for (const auto &[place, at] : kept) {
        const bool replaces = place > fromKnown;
        const qint64 before = fromKnown > 0 ? known[fromKnown - 1].endMs : startMs;
        const qint64 after = place < known.size() ? known[place].startMs : endMs;
        share(words, from, at, replaces ? known[fromKnown].startMs : before,
              replaces ? known[place - 1].endMs : std::max(before, after));
        if (at < words.size())
            words[at] = known[place];
        fromKnown = place + 1;
        from = at + 1;
    }
    return words;
}

} // namespace

std::vector<Line> linesFrom(const std::vector<Segment> &segments)
{
    std::vector<Line> lines;
    for (const Segment &segment : segments) {
        const QString text = segment.text();
        if (text.isEmpty())
            continue;
        lines.push_back({segment.startMs,
                         segment.endMs,
                         segment.speaker,
                         text,
                         timed(wordsOf(text), *segment.words, segment.startMs, segment.endMs)});
    }
    return lines;
}

QStringList speakersOf(const std::vector<Line> &lines)
{
    QStringList speakers;
    for (const Line &line : lines) {
        if (!line.speaker.isEmpty() && !speakers.contains(line.speaker))
            speakers.append(line.speaker);
    }
    return speakers;
}

Line withText(const Line &line, const QString &text)
{
    Line changed = line;
    changed.text = text;
    changed.words = timed(wordsOf(text), line.words, line.startMs, line.endMs);
    return changed;
}

std::pair<Line, Line> cut(const Line &line, qsizetype place)
{
    Line first = line;
    Line second = line;
    first.text = trimmedText(QStringView(line.text).left(place));
    second.text = trimmedText(QStringView(line.text).sliced(place));
    const QStringList left = wordsOf(first.text);
    const QStringList right = wordsOf(second.text);
    const auto leftCount = size_t(left.size());
    const auto rightCount = size_t(right.size());
    const bool insideWord = leftCount + rightCount == line.words.size() + 1;
    first.words.assign(line.words.begin(), line.words.begin() + std::ptrdiff_t(leftCount));
    second.words.assign(line.words.end() - std::ptrdiff_t(rightCount), line.words.end());
    if (insideWord) {
        const Word whole = first.words.back();
        const qint64 middle =
            whole.startMs + (whole.endMs - whole.startMs) * left.back().size() / whole.text.size();
        first.words.back() = {left.back(), whole.startMs, middle};
        second.words.front() = {right.front(), middle, whole.endMs};
    }
    const bool firstIsEmpty = first.words.empty();
    const qint64 end = !firstIsEmpty ? first.words.back().endMs
                                     : !second.words.empty() ? second.words.front().startMs : line.startMs;
    first.endMs = std::clamp(end, line.startMs, line.endMs);
    second.startMs = second.words.empty() ? first.endMs
                                          : std::clamp(second.words.front().startMs, first.endMs, line.endMs);
    return {first, second};
}

Line joined(const Line &upper, const Line &lower)
{
    Line line = upper;
    line.endMs = std::max(upper.endMs, lower.endMs);
    if (!upper.text.isEmpty() && !lower.text.isEmpty())
        line.text += u' ';
    line.text += lower.text;
    line.words.insert(line.words.end(), lower.words.begin(), lower.words.end());
    return line;
}

} // namespace engine
