#pragma once

#include <QString>

namespace engine {

// Whether the file is an MP4 (or MOV) whose tracks are played as they stand, from about their start to about their end,
// as recorders write them: none is cut, delayed, put together or played at another speed by its list of edits. False for
// every other file, and for one that cannot be read.
bool isPlayedAsItStands(const QString &path);

} // namespace engine
