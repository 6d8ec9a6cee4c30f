#pragma once

namespace tuppi {

/// Tells Qt how to speak for the controls that are drawn by hand. Every one of them calls it; only the first
/// call has an effect.
void installControlAccessibility();

} // namespace tuppi
