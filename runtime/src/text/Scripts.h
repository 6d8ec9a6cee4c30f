#pragma once

#include <QString>
#include <QStringList>

namespace engine {

// Chinese and Japanese letters: what is written with them has no blanks between its words.
bool isUnspaced(char32_t letter);

// What two texts that follow each other are joined with: a blank, or nothing between Chinese or Japanese ones.
QString jointBetween(QStringView before, QStringView behind);

// What ends a sentence whose last letter is that of the text; nothing where the script has no such sign (Thai).
QString fullStopFor(QStringView text);

// A text without blanks in the pieces that can be compared: of Chinese and Japanese single letters, Katakana as they
// stand together, and what denies in Japanese; else the whole. Signs stay behind their piece; joined, the pieces are
// the text again.
QStringList piecesOf(QStringView text);

// Whether a piece is of Chinese letters, which carry a meaning each, or of Katakana, which write names and foreign words.
bool isTellingPiece(QStringView piece);

} // namespace engine
