#pragma once

#include <QString>

namespace engine {

// A time of a recording for people: 01:02:03.
QString clock(qint64 ms);

} // namespace engine
