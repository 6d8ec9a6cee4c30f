#pragma once

#include "core/FileDescriptor.h"

#include <QByteArray>

namespace engine {

// A file in memory, to be read from its start: whoever is given it cannot hold up the one who has written it. Not valid,
// with errno, when there is no memory.
FileDescriptor memoryFile(const QByteArray &bytes);

} // namespace engine
