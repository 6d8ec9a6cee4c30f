#include "text/CleanFix.h"

#include "text/Scripts.h"
#include "text/WordParts.h"
#include "text/Words.h"

#include <QSet>

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

constexpr size_t contextWords = 20;
constexpr size_t certainWords = 3; // that many alike in a row are no coincidence

// What stands in front of a word goes with it.
struct Token : SignedWord
{
    QString before;

    QString text() const { return lead + core + trail; }
};

// Signs that stand alone, such as a dash, belong to the word in front of them. Signs alone are no text.
struct Tokens
{
    std::vector<Token> list;
    QString rest; // behind the last word

    explicit Tokens(QStringView text)
    {
        qsizetype at = 0;
        while (at < text.size()) {
            const qsizetype start = at;
            while (at < text.size() && isBlank(text[at]))
                ++at;
            QString blanks = text.sliced(start, at - start).toString();
            const qsizetype word = at;
            while (at < text.size() && !isBlank(text[at]))
                ++at;
            if (word == at)
                add(blanks, {});
            for (const QString &piece : piecesOf(text.sliced(word, at - word)))
                add(std::exchange(blanks, {}), piece);
        }
        // Blanks at the very end are no part of the last word.
        if (!list.empty()) {
            const qsizetype kept = trimmedText(u'.' + list.back().trail).size() - 1;
            rest = list.back().trail.mid(kept);
            list.back().trail.truncate(kept);
        }
    }

    QString text() const
    {
        QString text;
        for (const Token &token : list)
            text += token.before + token.text();
        return text + rest;
    }

private:
    void add(const QString &blanks, const QString &piece)
    {
        const Token token{SignedWord(piece), m_before + blanks};
        if (!token.core.isEmpty()) {
            list.push_back(token);
            m_before.clear();
        } else if (!list.empty()) {
            list.back().trail += blanks + token.lead;
        } else {
            m_before += blanks + token.lead;
        }
    }

    QString m_before; // signs in front of the first word
};

// Between words of one line.
QString blankBefore(const Token &token)
{
    return isUnspaced(token.core.front().unicode()) ? QString() : u" "_s;
}

QStringList keysOf(const std::vector<Token> &tokens)
{
    QStringList keys;
    for (const Token &token : tokens)
        keys.append(token.core.toCaseFolded());
    return keys;
}

// Where words of a stretch of the lines stand in the text.
class Search
{
public:
    Search(const QStringList &text, const QStringList &said, qsizetype begin, qsizetype end)
        : m_text(text)
        , m_said(said)
        , m_begin(begin)
        , m_end(end)
    {
    }

    // The place whose surroundings are most like those of the line; of equals the one that is as far into the
    // text as the line is into the lines.
    std::optional<qsizetype> place() const
    {
        std::optional<qsizetype> best;
        size_t bestLikeness = 0;
        int places = 0;
        const double expected = double(m_begin) * double(m_text.size() + 1) / double(m_said.size() + 1);
        const auto distance = [&](qsizetype at) { return std::abs(double(at) - expected); };
        for (qsizetype at = 0; at + m_end - m_begin <= m_text.size(); ++at) {
            if (!std::equal(m_said.begin() + m_begin, m_said.begin() + m_end, m_text.begin() + at))
                continue;
            ++places;
            const size_t here = likeness(at);
            if (!best || here > bestLikeness || (here == bestLikeness && distance(at) < distance(*best))) {
                best = at;
                bestLikeness = here;
            }
        }
        const auto words = size_t(m_end - m_begin);
        const bool certain = words + bestLikeness >= certainWords && (places == 1 || bestLikeness > 0);
        return certain ? best : std::nullopt;
    }

private:
    // Words around it that both have; a common beginning or end counts as one.
    size_t likeness(qsizetype at) const
    {
        size_t same = 0;
        for (qsizetype step = 1; same < contextWords; ++step) {
            const bool lineStart = step > m_begin;
            const bool textStart = step > at;
            same += lineStart && textStart ? 1 : 0;
            if (lineStart || textStart || m_said[m_begin - step] != m_text[at - step])
                break;
            ++same;
        }
        const qsizetype behind = at + m_end - m_begin;
        for (qsizetype step = 0; same < 2 * contextWords; ++step) {
            const bool lineEnd = m_end + step >= m_said.size();
            const bool textEnd = behind + step >= m_text.size();
            same += lineEnd && textEnd ? 1 : 0;
            if (lineEnd || textEnd || m_said[m_end + step] != m_text[behind + step])
                break;
            ++same;
        }
        return same;
    }

    const QStringList &m_text;
    const QStringList &m_said;
    qsizetype m_begin;
    qsizetype m_end;
};

// Where the words of a line and around it have come to in a text that lacks some of them and has others instead: the
// stretch of the text that is most like them.
class Alignment
{
public:
    // The line is what stands in `said` from `begin` to before `end`. Of what was said twice, but stands in the text
    // once, the words that are not `changing` are there.
    Alignment(const QStringList &said, qsizetype begin, qsizetype end, const QStringList &text,
              const QSet<qsizetype> &changing = {})
        : m_first(std::max<qsizetype>(begin - around, -1))
        , m_places(size_t(std::min(end + around, said.size() + 1) - m_first), nowhere)
    {
        // Both begin and end with what no word is, so that a common beginning or end counts like a word.
        const auto bounded = [](const QStringList &words, qsizetype from, qsizetype to) {
            QStringList list;
            for (qsizetype i = from; i < to; ++i)
                list.append(i < 0 ? u"\n<"_s : i >= words.size() ? u"\n>"_s : words[i]);
            return list;
        };
        const QStringList a = bounded(said, m_first, m_first + qsizetype(m_places.size()));
        const QStringList b = bounded(text, -1, text.size() + 1);
        if (size_t(a.size()) * size_t(b.size()) <= mostCells)
            align(a, b, double(end) / double(said.size() + 1) * double(b.size()), changing);
    }

    // Of a word that was said, its place in the text; nothing where it is not there.
    std::optional<qsizetype> place(qsizetype word) const
    {
        const qsizetype at = word - m_first;
        const qsizetype found = at >= 0 && at < std::ssize(m_places) ? m_places[size_t(at)] : nowhere;
        return found == nowhere ? std::nullopt : std::optional(found);
    }

    // How many of these words stand in the text.
    qsizetype found(qsizetype from, qsizetype to) const
    {
        qsizetype sum = 0;
        for (; from < to; ++from)
            sum += place(from) ? 1 : 0;
        return sum;
    }

private:
    enum Step : char { Stop, Both, OnlyA, OnlyB };
    static constexpr qsizetype nowhere = -2;
    static constexpr qsizetype around = 60; // words
    static constexpr size_t mostCells = 30'000'000;
    static constexpr int forSame = 6;
    static constexpr int forChanging = 5;
    static constexpr int forMissing = -1; // of a word that has no counterpart

    void align(const QStringList &a, const QStringList &b, double expected, const QSet<qsizetype> &changing)
    {
        const auto width = size_t(b.size()) + 1;
        std::vector<char> steps((size_t(a.size()) + 1) * width, Stop);
        std::vector<int> above(width);
        std::vector<int> row(width);
        std::pair<size_t, size_t> best;
        int most = 0;
        for (size_t i = 1; i <= size_t(a.size()); ++i) {
            const int worth = changing.contains(m_first + qsizetype(i) - 1) ? forChanging : forSame;
            for (size_t j = 1; j < width; ++j) {
                const bool same = a[qsizetype(i) - 1] == b[qsizetype(j) - 1];
                int score = same ? above[j - 1] + worth : 0;
                char step = same ? Both : Stop;
                for (const auto &[other, way] : {std::pair(above[j] + forMissing, OnlyA), {row[j - 1] + forMissing, OnlyB}}) {
                    if (other > score) {
                        score = other;
                        step = way;
                    }
                }
                row[j] = score;
                steps[i * width + j] = step;
                const auto far = [&](size_t place) { return std::abs(double(place) - expected); };
                if (score > most || (score == most && score > 0 && far(j) < far(best.second))) {
                    most = score;
                    best = {i, j};
                }
            }
            std::swap(above, row);
        }
        for (auto [i, j] = best; steps[i * width + j] != Stop;) {
            const char step = steps[i * width + j];
            if (step == Both)
                m_places[i - 1] = qsizetype(j) - 2;
            i -= step == OnlyB ? 0 : 1;
            j -= step == OnlyA ? 0 : 1;
        }
    }

    qsizetype m_first;
    std::vector<qsizetype> m_places; // of the word number m_first + index; -1 is the beginning of the text
};

bool startsUpper(const QString &word)
{
    return !word.isEmpty() && word.front().isUpper();
}

QString withCapital(QString word)
{
    if (!word.isEmpty())
        word[0] = word[0].toTitleCase();
    return word;
}

// Carries the differences between the old words and the new ones over to their counterpart in the text: what
// the text had made of a word (capital, signs) is kept unless just that was corrected.
class Carrier
{
public:
    Carrier(std::vector<Token> &text, size_t begin, const std::vector<Token> &old,
            const std::vector<Token> &now)
        : m_text(text)
        , m_begin(begin)
        , m_old(old)
        , m_now(now)
    {
    }

    void carry()
    {
        std::vector<std::pair<size_t, size_t>> kept = commonWords(keysOf(m_old), keysOf(m_now));
        kept.emplace_back(m_old.size(), m_now.size());
        size_t fromOld = 0;
        size_t from = 0;
        for (const auto &[place, at] : kept) {
            if (place == fromOld)
                insert(place, from, at);
            else if (at == from)
                drop(fromOld, place);
            else
                replace(fromOld, place, from, at);
            if (at < m_now.size())
                m_made.push_back(dressed(place, at));
            fromOld = place + 1;
            from = at + 1;
        }
        finish();
    }

private:
    const Token &inText(size_t old) const { return m_text[m_begin + old]; }
    Token *previous()
    {
        if (!m_made.empty())
            return &m_made.back();
        return m_begin > 0 ? &m_text[m_begin - 1] : nullptr;
    }

    // The text has given the word a capital because a sentence begins with it.
    bool madeCapital(size_t old) const
    {
        const size_t at = m_begin + old;
        const bool startsSentence = at == 0 || endsSentence(m_text[at - 1].trail);
        return startsSentence && startsUpper(m_text[at].core) && !startsUpper(m_old[old].core);
    }

    Token dressed(size_t old, size_t now)
    {
        Token made = inText(old);
        const Token &was = m_old[old];
        const Token &is = m_now[now];
        if (is.lead != was.lead)
            made.lead = is.lead;
        if (is.trail != was.trail)
            made.trail = is.trail;
        if (is.core != was.core)
            made.core = madeCapital(old) ? withCapital(is.core) : is.core;
        if (std::exchange(m_capitalDue, false))
            made.core = withCapital(made.core);
        if (const QString before = std::exchange(m_beforeDue, {}); !before.isEmpty())
            made.before = before;
        return made;
    }

    void replace(size_t fromOld, size_t toOld, size_t from, size_t to)
    {
        if (toOld - fromOld == to - from) {
            for (; from < to; ++from)
                m_made.push_back(dressed(fromOld++, from));
            return;
        }
        const size_t first = m_made.size();
        for (size_t i = from; i < to; ++i)
            m_made.push_back(withBlank(m_now[i]));
        Token &front = m_made[first];
        front.before = inText(fromOld).before;
        if (madeCapital(fromOld))
            front.core = withCapital(front.core);
        if (m_now[to - 1].trail == m_old[toOld - 1].trail)
            m_made.back().trail = inText(toOld - 1).trail;
    }

    void insert(size_t place, size_t from, size_t to)
    {
        if (from == to)
            return;
        const size_t first = m_made.size();
        const bool atStart = m_made.empty();
        // A full stop that the text has put behind the words so far moves on behind the new ones.
        QString trail;
        if (!atStart && place > 0 && inText(place - 1).trail != m_old[place - 1].trail)
            trail = std::exchange(m_made.back().trail, m_old[place - 1].trail);
        for (size_t i = from; i < to; ++i)
            m_made.push_back(withBlank(m_now[i]));
        if (m_made.back().trail.isEmpty())
            m_made.back().trail = trail;
        if (!atStart)
            return;
        if (place < m_old.size()) {
            Token &next = m_text[m_begin + place];
            m_made[first].before = std::exchange(next.before, blankBefore(next));
            if (madeCapital(place)) {
                m_made[first].core = withCapital(m_made[first].core);
                next.core = m_old[place].core;
            }
        } else {
            insertSentence(first);
        }
    }

    // A line that had been emptied comes back between whole sentences as one.
    void insertSentence(size_t first)
    {
        const Token *before = m_begin > 0 ? &m_text[m_begin - 1] : nullptr;
        if (before && !endsSentence(before->trail))
            return;
        if (!before && m_begin < m_text.size())
            m_made[first].before = std::exchange(m_text[m_begin].before, blankBefore(m_text[m_begin]));
        m_made[first].core = withCapital(m_made[first].core);
        if (m_made.back().trail.isEmpty())
            m_made.back().trail = fullStopFor(m_made.back().core);
    }

    void drop(size_t fromOld, size_t toOld)
    {
        const QString &trail = inText(toOld - 1).trail;
        Token *const token = previous();
        if (token && endsSentence(trail) && !endsSentence(token->trail))
            token->trail += trail;
        m_capitalDue = m_capitalDue || madeCapital(fromOld);
        if (m_beforeDue.isEmpty())
            m_beforeDue = inText(fromOld).before;
        // Within a line the sentence that begins behind the dropped words keeps its own blank.
        if (toOld < m_old.size() && inText(toOld).before.contains(u'\n'))
            m_beforeDue.clear();
    }

    void finish()
    {
        if (m_old.empty() && m_made.empty())
            return;
        const auto begin = m_text.begin() + std::ptrdiff_t(m_begin);
        const auto behind = m_text.erase(begin, begin + std::ptrdiff_t(m_old.size()));
        // The next line goes on with the sentence whose beginning went, or with the paragraph.
        if (behind != m_text.end()) {
            const bool sentenceGoesOn = m_begin == 0 || endsSentence(m_text[m_begin - 1].trail);
            if (m_capitalDue && m_made.empty() && sentenceGoesOn)
                behind->core = withCapital(behind->core);
            if (m_made.empty() && (m_begin == 0 || m_beforeDue.contains(u'\n')))
                behind->before = m_beforeDue;
        }
        m_text.insert(m_text.begin() + std::ptrdiff_t(m_begin), m_made.begin(), m_made.end());
    }

    static Token withBlank(Token token)
    {
        token.before = blankBefore(token);
        return token;
    }

    std::vector<Token> &m_text;
    size_t m_begin;
    const std::vector<Token> &m_old;
    const std::vector<Token> &m_now;
    std::vector<Token> m_made;
    bool m_capitalDue = false;
    QString m_beforeDue;
};

// The words of all lines, and which of them are one line's.
struct Said
{
    QStringList words;
    qsizetype begin = 0;
    qsizetype end = 0;

    Said(const std::vector<Line> &lines, size_t line)
    {
        for (size_t i = 0; i < lines.size(); ++i) {
            if (i == line)
                begin = words.size();
            words += keysOf(Tokens(lines[i].text).list);
            if (i == line)
                end = words.size();
        }
    }
};

// Words of a line that became others, with their places in both.
struct Change
{
    size_t fromOld = 0;
    size_t toOld = 0;
    size_t from = 0;
    size_t to = 0;
};

std::vector<Change> changesOf(const std::vector<Token> &old, const std::vector<Token> &now)
{
    std::vector<Change> changes;
    std::vector<std::pair<size_t, size_t>> kept = commonWords(keysOf(old), keysOf(now));
    std::erase_if(kept, [&](const auto &pair) { return old[pair.first].text() != now[pair.second].text(); });
    kept.emplace_back(old.size(), now.size());
    Change next;
    for (const auto &[place, at] : kept) {
        next.toOld = place;
        next.to = at;
        if (next.toOld > next.fromOld || next.to > next.from)
            changes.push_back(next);
        next = {place + 1, 0, at + 1, 0};
    }
    return changes;
}

// Carries the changes of a line over of which the text holds what is around them.
class Pieces
{
public:
    Pieces(std::vector<Token> &text, const Said &said, const std::vector<Token> &old, const std::vector<Token> &now)
        : m_text(text)
        , m_begin(said.begin)
        , m_old(old)
        , m_now(now)
        , m_changes(changesOf(old, now))
        , m_alignment(said.words, said.begin, said.end, keysOf(text), changing())
    {
    }

    void carry()
    {
        if (m_alignment.found(m_begin, m_begin + std::ssize(m_old)) == 0)
            return;
        // From the end, so that the places in front of a change stay what they are.
        for (; !m_changes.empty(); m_changes.pop_back())
            carry(m_changes.back());
    }

private:
    QSet<qsizetype> changing() const
    {
        QSet<qsizetype> words;
        for (const Change &change : m_changes) {
            for (size_t i = change.fromOld; i < change.toOld; ++i)
                words.insert(m_begin + qsizetype(i));
        }
        return words;
    }

    // Of a word of the line; those of other lines are in front of it and behind it.
    std::optional<qsizetype> place(size_t word, int step = 0) const
    {
        return m_alignment.place(m_begin + qsizetype(word) + step);
    }

    bool isCertain(const Change &change) const
    {
        constexpr auto around = 2 * qsizetype(certainWords); // some of them may be hesitation
        return m_alignment.found(m_begin + qsizetype(change.fromOld) - around,
                                 m_begin + qsizetype(change.toOld) + around) >= qsizetype(certainWords);
    }

    bool standsWordForWord(const Change &change) const
    {
        const auto count = qsizetype(change.toOld - change.fromOld);
        const qsizetype first = m_begin + qsizetype(change.fromOld);
        return count > 0 && m_alignment.found(first, first + count) == count &&
               *place(change.toOld, -1) - *place(change.fromOld) == count - 1;
    }

    void carry(const Change &change)
    {
        if (!isCertain(change))
            return;
        if (standsWordForWord(change)) {
            put(*place(change.fromOld), *place(change.toOld, -1) + 1, change);
            return;
        }
        // The text lacks the words, or has others for them and for those beside them.
        Change wider = change;
        for (; wider.fromOld > 0 && !place(wider.fromOld, -1); --wider.from)
            --wider.fromOld;
        for (; wider.toOld < m_old.size() && !place(wider.toOld); ++wider.to)
            ++wider.toOld;
        const std::optional<qsizetype> before = place(wider.fromOld, -1);
        const std::optional<qsizetype> behind = place(wider.toOld);
        if (!before || !behind)
            return;
        const qsizetype count = *behind - *before - 1;
        if (count == 0)
            put(*behind, *behind, {wider.fromOld, wider.toOld, change.from, change.to});
        else if (count <= 2 * qsizetype(wider.toOld - wider.fromOld))
            rewrite(*before + 1, *behind, wider);
    }

    // Where the text has the old words or nothing. A word of the line beside them tells how to join them.
    void put(qsizetype begin, qsizetype end, const Change &change)
    {
        std::vector<Token> old;
        std::vector<Token> now(m_now.begin() + qsizetype(change.from), m_now.begin() + qsizetype(change.to));
        if (end > begin)
            old.assign(m_old.begin() + qsizetype(change.fromOld), m_old.begin() + qsizetype(change.toOld));
        if (change.fromOld > 0 && place(change.fromOld, -1) == begin - 1) {
            old.insert(old.begin(), m_old[change.fromOld - 1]);
            now.insert(now.begin(), m_old[change.fromOld - 1]);
            --begin;
        }
        if (change.toOld < m_old.size() && place(change.toOld) == end) {
            old.push_back(m_old[change.toOld]);
            now.push_back(m_old[change.toOld]);
        }
        Carrier(m_text, size_t(begin), old, now).carry();
    }

    // Where the text has other words than were heard ("25").
    void rewrite(qsizetype begin, qsizetype end, const Change &change)
    {
        std::vector<Token> old(m_text.begin() + begin, m_text.begin() + end);
        const std::vector<Token> now(m_now.begin() + qsizetype(change.from), m_now.begin() + qsizetype(change.to));
        if (!now.empty()) {
            // Capital and signs are the text's own.
            old.front().core[0] = old.front().core[0].toLower();
            old.back().trail = now.back().trail;
        }
        Carrier(m_text, size_t(begin), old, now).carry();
    }

    std::vector<Token> &m_text;
    qsizetype m_begin;
    const std::vector<Token> &m_old;
    const std::vector<Token> &m_now;
    std::vector<Change> m_changes;
    Alignment m_alignment;
};

} // namespace

QString withCorrectedLine(const QString &text, const std::vector<Line> &lines, size_t line,
                          const QString &corrected)
{
    const Said said(lines, line);
    Tokens whole(text);
    const QStringList keys = keysOf(whole.list);
    const Tokens old(lines[line].text);
    const Tokens now(corrected);
    if (const std::optional<qsizetype> place = Search(keys, said.words, said.begin, said.end).place())
        Carrier(whole.list, size_t(*place), old.list, now.list).carry();
    else
        Pieces(whole.list, said, old.list, now.list).carry();
    return whole.text();
}

WordsFound wordsFound(const QString &text, const std::vector<Line> &lines, size_t line)
{
    const Said said(lines, line);
    const QStringList keys = keysOf(Tokens(text).list);
    const Alignment alignment(said.words, said.begin, said.end, keys);
    qsizetype first = 0;
    qsizetype behind = said.words.size();
    while (first < behind && !alignment.place(first))
        ++first;
    while (first < behind && !alignment.place(behind - 1))
        --behind;
    return {keys.size(), alignment.found(first, behind), alignment.found(said.begin, said.end), behind - first};
}

} // namespace engine
