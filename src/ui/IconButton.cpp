#include "ui/IconButton.h"

#include "ui/Colours.h"
#include "ui/Metrics.h"
#include "ui/Painting.h"

#include <QPainter>

namespace tuppi {

IconButton::IconButton(QWidget *parent)
    : QPushButton(parent)
    , m_tint(Colours::accentBlue)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::TabFocus);
    setAutoDefault(true);
}

void IconButton::setSymbol(const QString &name)
{
    if (m_symbol == name)
        return;
    m_symbol = name;
    update();
}

void IconButton::setTint(const QColor &tint)
{
    if (m_tint == tint)
        return;
    m_tint = tint;
    update();
}

void IconButton::setTip(const QString &tip)
{
    setToolTip(plainToolTip(tip));
    setAccessibleName(tip);
}

QSize IconButton::sizeHint() const
{
    return {Metrics::iconButton, Metrics::iconButton};
}

void IconButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF bounds(rect());
    const bool hovered = isEnabled() && testAttribute(Qt::WA_UnderMouse);
    if (isDown() || hovered) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(Colours::withOpacity(m_tint, isDown() ? 0.18 : 0.09));
        painter.drawRoundedRect(bounds, Metrics::iconButtonRadius, Metrics::iconButtonRadius);
    }
    drawSymbol(painter, m_symbol, Colours::withOpacity(m_tint, isEnabled() ? 1 : Metrics::disabledOpacity),
               Metrics::iconButtonSymbol, bounds);
    if (hasFocus())
        drawFocusRing(painter, bounds, Metrics::iconButtonRadius);
}

IconButton *iconButton(const QString &symbol, const QString &tip, QWidget *parent)
{
    auto *button = new IconButton(parent);
    button->setSymbol(symbol);
    button->setTip(tip);
    return button;
}

} // namespace tuppi
