#include "text/WordParts.h"

#include <algorithm>

namespace engine {

namespace {

bool belongsToWord(QChar c)
{
    return c.isLetterOrNumber() || c.isMark() || c.isSurrogate();
}

} // namespace

SignedWord::SignedWord(const QString &word)
{
    qsizetype from = 0;
    qsizetype to = word.size();
    while (from < to && !belongsToWord(word[from]))
        ++from;
    while (to > from && !belongsToWord(word[to - 1]))
        --to;
    lead = word.left(from);
    core = word.mid(from, to - from);
    trail = word.mid(to);
}

WordParts::WordParts(const QString &word)
    : SignedWord(word)
{
    if (trail.startsWith(u'.') && core.contains(u'.')) {
        core += u'.';
        trail.remove(0, 1);
    }
}

bool WordParts::endsSentence() const
{
    return engine::endsSentence(trail);
}

bool endsSentence(QStringView signs)
{
    constexpr QStringView marks = u".?!…。？！؟۔।॥";
    return std::ranges::any_of(signs, [&](QChar c) { return marks.contains(c); });
}

} // namespace engine
