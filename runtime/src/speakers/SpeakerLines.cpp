#include "speakers/SpeakerLines.h"

#include <QHash>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

// More of the turn within the word is better, else less of a gap between them.
int64_t nearness(const Turn &turn, const Word &word)
{
    return std::min<int64_t>(turn.endMs, word.endMs) - std::max<int64_t>(turn.startMs, word.startMs);
}

// Turns are in order, and so are the words asked for.
class SpeakerOfWord
{
public:
    explicit SpeakerOfWord(const std::vector<Turn> &turns)
        : m_turns(turns)
    {
    }

    int operator()(const Word &word)
    {
        while (m_first + 1 < m_turns.size() && m_turns[m_first + 1].startMs <= word.startMs)
            ++m_first;
        size_t best = m_first;
        for (size_t i = m_first + 1; i < m_turns.size() && m_turns[i - 1].startMs < word.endMs; ++i) {
            if (nearness(m_turns[i], word) > nearness(m_turns[best], word))
                best = i;
        }
        return m_turns[best].speaker;
    }

private:
    const std::vector<Turn> &m_turns;
    size_t m_first = 0; // the last turn that starts before the word
};

// Names in the order in which they are asked for.
class Names
{
public:
    QString of(int speaker)
    {
        QString &name = m_names[speaker];
        if (name.isEmpty())
            name = u"Speaker %1"_s.arg(m_names.size());
        return name;
    }

private:
    QHash<int, QString> m_names;
};

} // namespace

std::vector<Segment> cutBySpeaker(std::vector<Segment> segments, const std::vector<Turn> &turns)
{
    if (turns.empty())
        return segments;
    std::vector<Segment> parts;
    SpeakerOfWord speakerOf(turns);
    Names names;
    for (Segment &segment : segments) {
        parts.push_back({int(parts.size()), segment.startMs, segment.endMs, std::move(segment.words)});
        if (parts.back().text().isEmpty())
            continue;
        std::vector<Word> words = *std::exchange(parts.back().words, std::vector<Word>{});
        for (Word &word : words) {
            const QString name = names.of(speakerOf(word));
            Segment &part = parts.back();
            if (!part.words->empty() && part.speaker != name) {
                part.endMs = part.words->back().endMs;
                part.words->shrink_to_fit(); // of hours of speech the room to spare would count
                parts.push_back({part.number + 1, word.startMs, segment.endMs, std::vector<Word>{}, name});
            }
            parts.back().speaker = name;
            parts.back().words->push_back(std::move(word));
        }
        parts.back().words->shrink_to_fit();
    }
    return parts;
}

} // namespace engine
