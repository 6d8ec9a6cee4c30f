#pragma once

#include <QString>

namespace engine {

// Hands the text to the desktop's clipboard through wl-copy (Wayland) or xclip or xsel (X11), which keep it
// there after this program has ended. Throws Failure, with what to install where nothing fits.
void copyToClipboard(const QString &text);

} // namespace engine
