#pragma once

#include "text/Segment.h"

#include <QString>

#include <vector>

namespace engine {

// Takes words in their order, and keeps those that are to stay. What goes leaves its time and the end of a sentence to
// the word before it, and its capital to the one behind it.
class WordSieve
{
public:
    void keep(Word word);
    void drop(const Word &word);

    const std::vector<Word> &kept() const { return m_kept; }
    std::vector<Word> take() { return std::move(m_kept); }

private:
    std::vector<Word> m_kept;
    bool m_capitalDue = false;
};

// With a capital at its front, behind the signs that may stand there.
QString capitalisedWord(const QString &word);

} // namespace engine
