#pragma once

#include <functional>

class QWidget;

namespace tuppi {

/// Calls `rested` each time that the window was moved or sized and then rested for a second. One that is closed first
/// has to see to itself.
void whenFrameRests(QWidget *window, std::function<void()> rested);

} // namespace tuppi
