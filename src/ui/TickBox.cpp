#include "ui/TickBox.h"

#include "ui/Colours.h"
#include "ui/Fonts.h"
#include "ui/Metrics.h"
#include "ui/Painting.h"

#include <QPainter>
#include <QPainterPath>
#include <QStyle>

namespace tuppi {
namespace {

constexpr int box = 15;
constexpr int ring = 2; ///< width of the focus ring, outside the box
constexpr double boxRadius = 5;
constexpr int room = 3; ///< above, below and behind the title
constexpr int unbounded = 1 << 20;

void drawTick(QPainter &painter, const QRectF &bounds)
{
    QPainterPath tick;
    tick.moveTo(bounds.x() + 3.7, bounds.y() + 7.9);
    tick.lineTo(bounds.x() + 6.5, bounds.y() + 10.7);
    tick.lineTo(bounds.x() + 11.4, bounds.y() + 4.7);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Colours::white, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(tick);
}

} // namespace

TickBox::TickBox(const QString &title, QWidget *parent)
    : QCheckBox(withoutMnemonic(title), parent)
    , m_title(title)
{
    setFont(System(14, QFont::ExtraBold));
    setAttribute(Qt::WA_Hover);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

/// Of the left-to-right layout.
QRect TickBox::titleRect(int width) const
{
    const int across = qMax(1, width - titleIndent - room);
    const QRect text = fontMetrics().boundingRect(QRect(0, 0, across, unbounded), Qt::TextWordWrap, m_title);
    return {titleIndent, room, text.width(), text.height()};
}

QSize TickBox::sizeHint() const
{
    const QRect title = titleRect(unbounded);
    return {title.right() + 1 + room, qMax(title.height(), box) + 2 * room};
}

QSize TickBox::minimumSizeHint() const
{
    return {titleIndent + 8 * fontMetrics().averageCharWidth(), qMax(fontMetrics().height(), box) + 2 * room};
}

int TickBox::heightForWidth(int width) const
{
    return qMax(titleRect(width).height(), box) + 2 * room;
}

bool TickBox::hitButton(const QPoint &position) const
{
    const QRect whole(0, 0, titleRect(width()).right() + 1 + room, height());
    return QStyle::visualRect(layoutDirection(), rect(), whole).contains(position);
}

void TickBox::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double strength = isEnabled() ? 1 : Metrics::disabledOpacity;
    const QRect title = titleRect(width());
    const int lineHeight = fontMetrics().height();
    const QRect mark(ring, room + (lineHeight - box) / 2, box, box);
    const QRectF bounds = QStyle::visualRect(layoutDirection(), rect(), mark);

    const bool ticked = isChecked();
    const bool hovered = isEnabled() && testAttribute(Qt::WA_UnderMouse);
    painter.setBrush(ticked ? Colours::withOpacity(Colours::accentBlue, strength) : Colours::white);
    painter.setPen(ticked ? QPen(Qt::NoPen)
                          : QPen(hovered ? Colours::accentBlue : Colours::pillBorder, 1.5));
    const double edge = ticked ? 0 : 0.75;
    painter.drawRoundedRect(bounds.adjusted(edge, edge, -edge, -edge), boxRadius - edge, boxRadius - edge);
    if (ticked)
        drawTick(painter, bounds);

    painter.setPen(Colours::withOpacity(Colours::navy, strength));
    painter.setLayoutDirection(Qt::LayoutDirectionAuto);
    const Qt::Alignment leading = QStyle::visualAlignment(layoutDirection(), Qt::AlignLeading);
    painter.drawText(QStyle::visualRect(layoutDirection(), rect(), title),
                     int(leading | Qt::AlignAbsolute | Qt::AlignTop) | Qt::TextWordWrap | Qt::TextDontClip, m_title);
    if (hasFocus()) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(Colours::focusRing, 2));
        painter.drawRoundedRect(bounds.adjusted(-1, -1, 1, 1), boxRadius + 1, boxRadius + 1);
    }
}

} // namespace tuppi
