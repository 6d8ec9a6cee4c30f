#pragma once

/// Sizes of the interface in logical pixels.
namespace tuppi::Metrics {

// Pills
inline constexpr double largePillHeight = 44;
inline constexpr double pillRadiusLarge = 14;
inline constexpr double pillRadius = 11;
inline constexpr double pillBorderWidth = 2;
inline constexpr int pillPadLarge = 14;
inline constexpr int pillPad = 4;
inline constexpr int pillChrome = 10; ///< on either side of a title, before the padding
inline constexpr double pressedOpacity = 0.82;
inline constexpr double disabledOpacity = 0.5;
inline constexpr int rowPillHeight = 34;
inline constexpr int iconPillHeight = 40;
inline constexpr int iconPillSymbol = 22; ///< a glyph of 18 and the margin of its grid

// Icon buttons
inline constexpr int iconButton = 28;
inline constexpr int iconButtonSymbol = 20; ///< a glyph of 17 and the margin of its grid
inline constexpr double iconButtonRadius = 8;

// Progress bar
inline constexpr int barHeight = 8;
inline constexpr double barRadius = 4;
inline constexpr double sweepWidth = 0.3;  ///< of the bar
inline constexpr int sweepDuration = 1400; ///< milliseconds
inline constexpr int tickInterval = 40;    ///< milliseconds between two pictures of what moves

// List rows
inline constexpr int rowHeight = 86;
inline constexpr int cardInsetX = 1;
inline constexpr int cardInsetY = 5;
inline constexpr double cardRadius = 20;
inline constexpr double cardOutline = 2;
inline constexpr int cardFocusInset = 3;
inline constexpr double selectedOpacity = 0.35;
inline constexpr int rowMargin = 14;
inline constexpr int rowIconWidth = 64;
inline constexpr int rowTextGap = 5;
inline constexpr int rowButtonGap = 8;
inline constexpr int rowTextEnd = 10; ///< between the texts and the buttons

// Model cards
inline constexpr int modelCardWidth = 247;
inline constexpr int modelCardHeight = 92;
inline constexpr double modelCardRadius = 16;
inline constexpr double modelCardBorder = 2;

// Drop area
inline constexpr int dropInsetX = 18;
inline constexpr int dropInsetY = 10;
inline constexpr double dropRadius = 28;
inline constexpr double dropStroke = 3;
inline constexpr double dropDashOn = 10;
inline constexpr double dropDashOff = 7;

// Main window
inline constexpr int windowWidth = 780;
inline constexpr int windowHeight = 500;
inline constexpr int windowMinimumWidth = 720;
inline constexpr int windowMinimumHeight = 360;
inline constexpr int titleStripHeight = 40;
inline constexpr int wordMarkWidth = 70;
inline constexpr int wordMarkHeight = 14;
inline constexpr int dropAreaTop = 6;    ///< below the title strip
inline constexpr int dropAreaBottom = 8; ///< above the footer
inline constexpr int listInset = 16;
inline constexpr int footerHeight = 54;
inline constexpr int footerInset = 18;
inline constexpr int footerBottom = 16;
inline constexpr int footerMarginX = 8;
inline constexpr double footerRadius = 16;

// Sheets
inline constexpr int sheetTextWidth = 400;
inline constexpr int sheetTextLeast = 100; ///< height that a text which scrolls keeps
inline constexpr int sheetButtonHeight = 34;
inline constexpr int titleFieldWidth = 320;
inline constexpr int titleFieldHeight = 24;

// Result windows
inline constexpr int resultWidth = 900;
inline constexpr int resultHeight = 720;
inline constexpr int resultMinimumWidth = 360;
inline constexpr int resultMinimumHeight = 240;
inline constexpr int resultTextInsetX = 24;
inline constexpr int resultTextInsetY = 20;
inline constexpr int accessoryHeight = 44;
inline constexpr int accessoryButtonHeight = 30;
inline constexpr int accessorySpacing = 8;
inline constexpr int accessoryEnd = 10;

// Mascot: 160 wide to 140 high
inline constexpr double mascotWidth = 160;
inline constexpr double mascotHeight = 140;

} // namespace tuppi::Metrics
