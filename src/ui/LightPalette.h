#pragma once

#include <QPalette>

namespace tuppi {

/// The one palette of the program, light whatever the desktop's is, for a window with a white ground.
QPalette LightPalette();

} // namespace tuppi
