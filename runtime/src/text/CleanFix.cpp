#include "text/CleanFix.h"

#include "text/WordParts.h"
#include "text/Words.h"

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
        QString before;
        qsizetype at = 0;
        while (at < text.size()) {
            const qsizetype start = at;
            while (at < text.size() && isBlank(text[at]))
                ++at;
            const QString blanks = text.sliced(start, at - start).toString();
            const qsizetype word = at;
            while (at < text.size() && !isBlank(text[at]))
                ++at;
            const Token token{SignedWord(text.sliced(word, at - word).toString()), before + blanks};
            if (!token.core.isEmpty()) {
                list.push_back(token);
                before.clear();
            } else if (!list.empty()) {
                list.back().trail += blanks + token.lead;
            } else {
                before += blanks + token.lead;
            }
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
};

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

bool startsUpper(const QString &word)
{
    return !word.isEmpty() && word.front().isUpper();
}

QString withCapital(QString word)
{
    if (!word.isEmpty())
        word[0] = word[0].toUpper();
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
            m_made[first].before = std::exchange(next.before, u" "_s);
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
            m_made[first].before = std::exchange(m_text[m_begin].before, u" "_s);
        m_made[first].core = withCapital(m_made[first].core);
        if (m_made.back().trail.isEmpty())
            m_made.back().trail = u"."_s;
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
        token.before = u" "_s;
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

} // namespace

QString withCorrectedLine(const QString &text, const std::vector<Line> &lines, size_t line,
                          const QString &corrected)
{
    QStringList said;
    qsizetype begin = 0;
    qsizetype end = 0;
    for (size_t i = 0; i < lines.size(); ++i) {
        if (i == line)
            begin = said.size();
        said += keysOf(Tokens(lines[i].text).list);
        if (i == line)
            end = said.size();
    }
    Tokens whole(text);
    const QStringList keys = keysOf(whole.list);
    const std::optional<qsizetype> place = Search(keys, said, begin, end).place();
    if (!place)
        return text;
    const Tokens old(lines[line].text);
    const Tokens now(corrected);
    Carrier(whole.list, size_t(*place), old.list, now.list).carry();
    return whole.text();
}

} // namespace engine
