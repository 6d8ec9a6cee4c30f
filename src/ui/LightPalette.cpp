#include "ui/LightPalette.h"

#include "ui/Colours.h"

namespace tuppi {

QPalette LightPalette()
{
    QPalette palette(Colours::white, Colours::white);
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(role, Colours::navy);
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, Colours::hintText);
    palette.setColor(QPalette::Base, Colours::white);
    palette.setColor(QPalette::AlternateBase, Colours::paleCard);
    palette.setColor(QPalette::PlaceholderText, Colours::hintText);
    palette.setColor(QPalette::Highlight, Colours::accentBlue);
    palette.setColor(QPalette::HighlightedText, Colours::white);
    palette.setColor(QPalette::Link, Colours::accentBlue);
    palette.setColor(QPalette::ToolTipBase, Colours::white);
    palette.setColor(QPalette::ToolTipText, Colours::navy);
    return palette;
}

} // namespace tuppi
