#include "ui/Appearance.h"

#include "ui/Colours.h"

#include <QApplication>
#include <QIcon>
#include <QImageReader>
#include <QPalette>
#include <QStyleFactory>

namespace tuppi {

using namespace Qt::StringLiterals;

void applyAppearance(QApplication &application)
{
    application.setStyle(QStyleFactory::create(u"Fusion"_s));
    QPalette palette(Colours::white, Colours::window);
    palette.setColor(QPalette::WindowText, Colours::navy);
    palette.setColor(QPalette::Text, Colours::navy);
    palette.setColor(QPalette::ButtonText, Colours::navy);
    palette.setColor(QPalette::Base, Colours::white);
    palette.setColor(QPalette::AlternateBase, Colours::paleCard);
    palette.setColor(QPalette::Button, Colours::white);
    palette.setColor(QPalette::Highlight, Colours::accentBlue);
    palette.setColor(QPalette::HighlightedText, Colours::white);
    palette.setColor(QPalette::ToolTipBase, Colours::white);
    palette.setColor(QPalette::ToolTipText, Colours::navy);
    palette.setColor(QPalette::PlaceholderText, Colours::slate);
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, Colours::pillBorder);
    application.setPalette(palette);
}

void applyIcon()
{
    // Pictures, not the drawing: that one costs four renderings.
    QIcon icon;
    for (const int size : {16, 32, 48, 128}) {
        // The format is named: looking for it would load every picture plugin that there is.
        const QString file = u":/icons/%1x%1/apps/tuppi-transcriber.png"_s.arg(size);
        icon.addPixmap(QPixmap::fromImage(QImageReader(file, "png").read()));
    }
    QGuiApplication::setWindowIcon(icon);
}

} // namespace tuppi
