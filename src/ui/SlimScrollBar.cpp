#include "ui/SlimScrollBar.h"

#include "ui/Colours.h"

#include <QPainter>
#include <QStyleOptionSlider>

namespace tuppi {

SlimScrollBar::SlimScrollBar(Qt::Orientation orientation, QWidget *parent)
    : QScrollBar(orientation, parent)
{
    setAttribute(Qt::WA_Hover);
    setAttribute(Qt::WA_OpaquePaintEvent, false);
}

QSize SlimScrollBar::sizeHint() const
{
    return orientation() == Qt::Vertical ? QSize(extent, QScrollBar::sizeHint().height())
                                         : QSize(QScrollBar::sizeHint().width(), extent);
}

void SlimScrollBar::paintEvent(QPaintEvent *)
{
    // Where the style puts the handle is where it takes the mouse.
    QStyleOptionSlider option;
    initStyleOption(&option);
    const QRectF handle = style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, this);
    const bool upright = orientation() == Qt::Vertical;
    const QRectF bar = upright ? handle.adjusted(3, 2, -3, -2) : handle.adjusted(2, 3, -2, -3);
    const double radius = qMin(bar.width(), bar.height()) / 2;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(isSliderDown() || testAttribute(Qt::WA_UnderMouse) ? Colours::slate : Colours::pillBorder);
    painter.drawRoundedRect(bar, radius, radius);
}

} // namespace tuppi
