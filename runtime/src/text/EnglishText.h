#pragma once

#include "text/Segment.h"

#include <QString>
#include <QStringList>

#include <vector>

// English as people write it, made of English as they speak it. Careful: what may be meant stays as it was
// said. Words may carry signs ("well,"), and keep their times; a word that goes leaves its time to the one
// before it.
namespace engine::english {

// "um" and its like go, and "you know" where it can be nothing else.
std::vector<Word> withoutFillers(const std::vector<Word> &words);

// "the the" becomes "the", "I think I think" once. What is repeated on purpose ("very very") stays.
std::vector<Word> withoutStammers(const std::vector<Word> &words);

// Numbers from ten on, years, days of a month, ordinals, percents, times and telephone numbers in figures.
std::vector<Word> withFigures(const std::vector<Word> &words);

// Capitals for "I" and for names that are known: days, months and feasts, the best known places and peoples. "may" and
// "march" only where a month is meant.
QStringList withCapitals(QStringList words);

// Whether the sentence asks beyond doubt.
bool asks(const QStringList &sentence);

} // namespace engine::english
