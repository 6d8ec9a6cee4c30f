#pragma once

#include <QMargins>

/// Sizes of the New Transcription panel, in logical pixels.
namespace tuppi::SetupMetrics {

inline constexpr int panelWidth = 560;
inline constexpr int contentWidth = 504;
inline constexpr QMargins pageMargins{28, 20, 28, 20}; ///< of all but the buttons; at the bottom the gap to them
inline constexpr QMargins buttonMargins{28, 0, 28, 24};
inline constexpr QMargins buttonMarginsBelowEdge{28, 14, 28, 18}; ///< where the page scrolls under them
inline constexpr int gap = 8;
inline constexpr int optionGap = 4; ///< a tick box brings room of its own
inline constexpr int cardGap = 10;
inline constexpr int lengthPause = 50; ///< milliseconds between two changes of the total length

} // namespace tuppi::SetupMetrics
