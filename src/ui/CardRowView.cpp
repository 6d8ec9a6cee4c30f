#include "ui/CardRowView.h"

#include "ui/Colours.h"
#include "ui/Metrics.h"
#include "ui/Painting.h"

#include <QPainter>

namespace tuppi {

void paintCardRow(QPainter &painter, const QRectF &bounds, bool activeCard, bool selected)
{
    const QRectF card =
        bounds.adjusted(Metrics::cardInsetX, Metrics::cardInsetY, -Metrics::cardInsetX, -Metrics::cardInsetY);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Colours::white);
    if (activeCard)
        painter.setPen(QPen(Colours::accentBlue, Metrics::cardOutline));
    else if (selected)
        painter.setPen(
            QPen(Colours::withOpacity(Colours::accentBlue, Metrics::selectedOpacity), Metrics::cardOutline));
    else
        painter.setPen(Qt::NoPen);
    painter.drawRoundedRect(card, Metrics::cardRadius, Metrics::cardRadius);
}

void CardRowView::setActiveCard(bool active)
{
    if (m_activeCard == active)
        return;
    m_activeCard = active;
    update();
}

void CardRowView::setSelected(bool selected)
{
    if (m_selected == selected)
        return;
    m_selected = selected;
    update();
}

void CardRowView::setShowsFocus(bool shown)
{
    if (m_showsFocus == shown)
        return;
    m_showsFocus = shown;
    update();
}

void CardRowView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    paintCardRow(painter, QRectF(rect()), m_activeCard, m_selected);
    if (!m_showsFocus)
        return;
    constexpr int inset = Metrics::cardFocusInset; // clear of the outline, which may be there too
    const QRectF ring = QRectF(rect()).adjusted(inset, Metrics::cardInsetY + inset, -inset, -Metrics::cardInsetY - inset);
    drawFocusRing(painter, ring, Metrics::cardRadius - inset);
}

} // namespace tuppi
