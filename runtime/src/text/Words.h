#pragma once

#include <QString>
#include <QStringList>

#include <utility>
#include <vector>

namespace engine {

// What separates words: the white space of the transcript page's language, so that both count the same words.
bool isBlank(QChar character);

// What stands between blanks.
QStringList wordsOf(QStringView text);

// Without blanks at both ends.
QString trimmedText(QStringView text);

// Places (in `a`, in `b`) of words that both have in the same order, rising in both: what was kept when `a`
// became `b`. As many as there are, unless both texts are so long and different that this takes too long.
std::vector<std::pair<size_t, size_t>> commonWords(const QStringList &a, const QStringList &b);

} // namespace engine
