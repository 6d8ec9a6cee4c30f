#pragma once

#include <QColor>

/// Every colour of the interface, by name (sRGB).
namespace tuppi::Colours {

inline constexpr QColor white{255, 255, 255};

// Texts and marks
inline constexpr QColor accentBlue{0, 87, 183};
inline constexpr QColor navy{11, 37, 69};
inline constexpr QColor slate{74, 93, 120};
inline constexpr QColor good{30, 122, 82};
inline constexpr QColor attention{161, 40, 28};
inline constexpr QColor hintText{96, 108, 128};

// Surfaces
inline constexpr QColor window{243, 248, 255};
inline constexpr QColor titleStrip{232, 240, 251};
inline constexpr QColor titleSeparator{211, 224, 242};
inline constexpr QColor paleCard{238, 245, 255};
inline constexpr QColor cardBorder{221, 232, 247};
inline constexpr QColor fileBox{243, 248, 255};
inline constexpr QColor badge{255, 230, 128};

// Pills
inline constexpr QColor pillBorder{125, 149, 181};
inline constexpr QColor paleRed{252, 232, 230};
inline constexpr QColor paleYellow{255, 241, 194};

// Progress, drop area, focus
inline constexpr QColor progressTrack{221, 232, 247};
inline constexpr QColor dropDash{157, 189, 230};
inline constexpr QColor focusRing{46, 121, 214};

/// The same colour at an opacity between 0 and 1, on top of its own.
inline QColor withOpacity(QColor colour, double opacity)
{
    colour.setAlphaF(float(colour.alphaF() * opacity));
    return colour;
}

} // namespace tuppi::Colours
