#include "text/WordSieve.h"

#include "text/WordParts.h"

#include <utility>

namespace engine {

void WordSieve::keep(Word word)
{
    if (std::exchange(m_capitalDue, false))
        word.text = capitalisedWord(word.text);
    m_kept.push_back(std::move(word));
}

void WordSieve::drop(const Word &word)
{
    const WordParts gone(word.text);
    m_capitalDue = m_capitalDue || (!gone.core.isEmpty() && gone.core.front().isUpper());
    if (m_kept.empty())
        return;
    Word &last = m_kept.back();
    last.endMs = word.endMs;
    const WordParts parts(last.text);
    if (gone.endsSentence() && !parts.endsSentence())
        last.text = parts.lead + parts.core + gone.trail;
}

QString capitalisedWord(const QString &word)
{
    const WordParts parts(word);
    return parts.lead + parts.core.left(1).toUpper() + parts.core.mid(1) + parts.trail;
}

} // namespace engine
