#pragma once

#include <QString>

namespace engine {

// Whether a text that a text model made of a part of a transcript says the same: no word that tells something
// is new (another ending, or figures for a number, are not), and most of them are still there.
bool keepsWhatWasSaid(const QString &said, const QString &written);

} // namespace engine
