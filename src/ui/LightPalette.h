#pragma once

#include <QPalette>

namespace tuppi {

/// The palette of a window with a white ground: what the desktop's style draws itself stays readable on it, also
/// where the desktop is dark.
QPalette LightPalette();

} // namespace tuppi
