#include "worker/SoundGroups.h"

#include <algorithm>

namespace engine {

namespace {

constexpr qint64 longestTailMs = 500;

qint64 pauseBehind(const std::vector<Segment> &plan, size_t at)
{
    return plan[at + 1].startMs - plan[at].endMs;
}

// The end of the group that begins at `first`.
size_t groupEnd(const std::vector<Segment> &plan, size_t first, qint64 longestMs)
{
    qint64 soundMs = plan[first].endMs - plan[first].startMs;
    size_t best = first + 1;
    qint64 bestPause = -1;
    for (size_t next = first + 1; next < plan.size(); ++next) {
        const qint64 pause = pauseBehind(plan, next - 1);
        if (pause >= bestPause || soundMs < longestMs / 2) {
            best = next;
            bestPause = soundMs < longestMs / 2 ? -1 : pause;
        }
        soundMs += std::min(pause, longestTailMs) + plan[next].endMs - plan[next].startMs;
        if (soundMs > longestMs)
            return best;
    }
    return plan.size();
}

qint64 overlap(const Phrase &phrase, const Piece &piece)
{
    return std::min(phrase.endMs, piece.offsetMs + piece.soundMs()) -
           std::max(phrase.startMs, piece.offsetMs);
}

// The piece that holds this moment of the sound, or the last one before it.
size_t pieceAt(const std::vector<Piece> &pieces, qint64 ms)
{
    const auto after = std::ranges::upper_bound(pieces, ms, {}, &Piece::offsetMs);
    return after == pieces.begin() ? 0 : size_t(after - pieces.begin()) - 1;
}

std::optional<size_t> homeOf(const Phrase &phrase, const std::vector<Piece> &pieces)
{
    const size_t middle = pieceAt(pieces, (phrase.startMs + phrase.endMs) / 2);
    if (overlap(phrase, pieces[middle]) * 4 >= (phrase.endMs - phrase.startMs) * 3)
        return middle;
    return std::nullopt;
}

Word inRecording(Word word, const Piece &piece)
{
    const auto moved = [&](qint64 ms) {
        return std::clamp(ms - piece.offsetMs + piece.segment.startMs, piece.segment.startMs,
                          piece.segment.endMs);
    };
    word.startMs = moved(word.startMs);
    word.endMs = moved(word.endMs);
    return word;
}

} // namespace

std::vector<std::vector<Segment>> groupsOf(const std::vector<Segment> &plan, qint64 longestMs)
{
    std::vector<std::vector<Segment>> groups;
    for (size_t first = 0; first < plan.size();) {
        const size_t end = groupEnd(plan, first, longestMs);
        groups.emplace_back(plan.begin() + std::ptrdiff_t(first), plan.begin() + std::ptrdiff_t(end));
        first = end;
    }
    return groups;
}

std::vector<Piece> joinedSound(const std::vector<Segment> &segments)
{
    std::vector<Piece> pieces;
    qint64 offsetMs = 0;
    for (size_t i = 0; i < segments.size(); ++i) {
        const qint64 tailMs = i + 1 < segments.size() ? std::min(pauseBehind(segments, i), longestTailMs) : 0;
        pieces.push_back({segments[i], offsetMs, tailMs});
        offsetMs += pieces.back().soundMs();
    }
    return pieces;
}

std::vector<std::vector<Word>> wordsByPiece(const std::vector<Piece> &pieces, const Heard &heard)
{
    std::vector<std::vector<Word>> words(pieces.size());
    size_t last = 0; // nothing goes back behind what was said before
    for (const Phrase &phrase : heard.phrases) {
        const std::optional<size_t> home = homeOf(phrase, pieces);
        for (const Word &word : phrase.words) {
            last = std::max(last, home.value_or(pieceAt(pieces, (word.startMs + word.endMs) / 2)));
            words[last].push_back(inRecording(word, pieces[last]));
        }
    }
    return words;
}

} // namespace engine
