#pragma once

namespace tuppi {

/// Milliseconds from now to the next change of something that moves and is to change in about that many. All that moves
/// changes at ticks that are common to the program, so that a window is painted, and handed over to the display, once
/// for all of it. The nearest tick, but not one that has been: what takes a number of ticks keeps its pace, though each
/// change comes a little late.
int millisecondsToTick(int milliseconds);

/// Likewise, at that moment of the steady clock, in milliseconds.
int millisecondsToTick(long long now, int milliseconds);

} // namespace tuppi
