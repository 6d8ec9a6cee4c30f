#pragma once

#include "text/Segment.h"

#include <QString>

#include <vector>

namespace engine {

// Without the sounds of whoever looks for words, which mean nothing else in the language ("ähm", "euh"). Of a language
// for which none are known, and of English, which has rules of its own, the words as they are.
std::vector<Word> withoutHesitation(std::vector<Word> words, const QString &language);

} // namespace engine
