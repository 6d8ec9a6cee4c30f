#include "settings/AboutWindow.h"

#include "settings/Acknowledgements.h"
#include "settings/Fill.h"
#include "settings/L.h"
#include "ui/Colours.h"
#include "ui/Fonts.h"
#include "ui/Labels.h"

#include <QApplication>
#include <QIcon>
#include <QVBoxLayout>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

constexpr int iconSize = 96;
constexpr int textWidth = 300;

WrapLabel *centred(const QString &text, const QFont &font, const QColor &colour, const QString &name)
{
    auto *label = new WrapLabel;
    label->setObjectName(name);
    label->setFont(font);
    label->setColour(colour);
    label->setPreferredWidth(textWidth);
    label->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    label->setText(text);
    return label;
}

} // namespace

AboutWindow::AboutWindow(const QString &version)
    : SideWindow(L(u"About Tuppi Transcriber"_s))
{
    setObjectName("About"_L1);
    setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint
                   | Qt::WindowCloseButtonHint);
    // The icon of the windows has no picture large enough for a fine screen.
    QIcon picture = QApplication::windowIcon();
    picture.addFile(u":/icons/256x256/apps/tuppi-transcriber.png"_s, QSize(256, 256));
    auto *icon = new QLabel;
    icon->setPixmap(picture.pixmap(QSize(iconSize, iconSize), devicePixelRatio()));
    icon->setAlignment(Qt::AlignCenter);

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(32, 26, 32, 28);
    column->setSpacing(8);
    column->setSizeConstraint(QLayout::SetFixedSize);
    column->addWidget(icon);
    column->addWidget(centred(L(u"Tuppi Transcriber"_s), Rounded(20, QFont::DemiBold), Colours::navy, u"aboutName"_s));
    column->addWidget(centred(Fill(L(u"Version %@"_s), {version}), System(12), Colours::slate, u"aboutVersion"_s));
    column->addSpacing(8);
    column->addWidget(centred(AboutCredits(), System(11), Colours::hintText, u"aboutCredits"_s));
    column->addSpacing(4);
    column->addWidget(centred(AboutBuild(), System(11), Colours::hintText, u"aboutBuild"_s));
}

} // namespace tuppi
