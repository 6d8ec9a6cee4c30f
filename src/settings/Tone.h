#pragma once

namespace tuppi {

/// What a coloured text says; the colour is the view's business.
enum class Tone {
    Quiet,     ///< neither good nor bad: secondary
    News,      ///< what is going on
    Good,
    Attention,
};

} // namespace tuppi
