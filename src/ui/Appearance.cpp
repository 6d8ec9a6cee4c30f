#include "ui/Appearance.h"

#include "ui/Colours.h"
#include "ui/LightPalette.h"
#include "ui/Pictures.h"

#include <QApplication>
#include <QIcon>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QProxyStyle>
#include <QStyleFactory>

namespace tuppi {

using namespace Qt::StringLiterals;

namespace {

/// An icon of the style's own, looked for when it is first drawn.
class LaterIcon : public QIconEngine
{
public:
    LaterIcon(const QStyle *style, QStyle::StandardPixmap which)
        : m_style(style)
        , m_which(which)
    {
    }

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State state) override
    {
        icon().paint(painter, rect, Qt::AlignCenter, mode, state);
    }
    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        return icon().pixmap(size, mode, state);
    }
    QSize actualSize(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        return icon().actualSize(size, mode, state);
    }
    QIconEngine *clone() const override { return new LaterIcon(*this); }

private:
    const QIcon &icon()
    {
        if (m_icon.isNull())
            m_icon = m_style->standardIcon(m_which);
        return m_icon;
    }

    const QStyle *m_style;
    QStyle::StandardPixmap m_which;
    QIcon m_icon;
};

/// Every menu bar has the icon of a button for the menus that find no room. Looking for it loads each picture plugin
/// that there is, before the window's first picture.
class LookStyle : public QProxyStyle
{
public:
    LookStyle()
        : QProxyStyle(QStyleFactory::create(u"Fusion"_s))
    {
    }

    QIcon standardIcon(StandardPixmap which, const QStyleOption *option, const QWidget *widget) const override
    {
        if (which == SP_ToolBarHorizontalExtensionButton)
            return QIcon(new LaterIcon(baseStyle(), which));
        return QProxyStyle::standardIcon(which, option, widget);
    }
};

} // namespace

void applyAppearance(QApplication &application)
{
    application.setStyle(new LookStyle);
    QPalette palette = LightPalette();
    palette.setColor(QPalette::Window, Colours::window);
    application.setPalette(palette);
}

void applyIcon()
{
    QIcon icon;
    for (const int size : {16, 32, 48, 128}) {
        const QString file = u":/icons/%1x%1/apps/tuppi-transcriber.png"_s.arg(size);
        icon.addPixmap(QPixmap::fromImage(ReadPng(file)));
    }
    QGuiApplication::setWindowIcon(icon);
}

} // namespace tuppi
