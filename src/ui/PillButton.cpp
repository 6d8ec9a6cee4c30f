#include "ui/PillButton.h"

#include "ui/Colours.h"
#include "ui/Fonts.h"
#include "ui/Metrics.h"
#include "ui/Painting.h"

#include <QPainter>

#include <cmath>

namespace tuppi {

namespace {

using namespace Qt::StringLiterals;

QColor fillOf(int style)
{
    switch (style) {
    case 0:
        return Colours::accentBlue;
    case 2:
        return Colours::paleRed;
    case 3:
        return Colours::paleYellow;
    default:
        return Colours::white;
    }
}

/// A shade deeper, so that it cannot be taken for pressed, which is paler.
QColor hovered(int style, const QColor &fill)
{
    if (style == 0)
        return fill.darker(116);
    return fill == Colours::white ? Colours::paleCard : fill.darker(104);
}

} // namespace

PillButton::PillButton(QWidget *parent)
    : QPushButton(parent)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAttribute(Qt::WA_Hover);
    // Reached with Tab, but a click leaves the focus where it was: in the list, say, whose arrow keys go on
    // working.
    setFocusPolicy(Qt::TabFocus);
    // Return presses a focused button outside dialogs too.
    setAutoDefault(true);
}

void PillButton::setPill(int style)
{
    if (m_pill == style)
        return;
    m_pill = style;
    update();
}

void PillButton::setPillHeight(double height)
{
    m_pillHeight = height;
    updateGeometry();
    update();
}

void PillButton::setPad(int pad)
{
    m_pad = pad;
    updateGeometry();
}

void PillButton::setTitle(const QString &title)
{
    if (m_title == title)
        return;
    m_title = title;
    setText(withoutMnemonic(title));
    updateGeometry();
    update();
}

void PillButton::setSymbol(const QString &name, double size)
{
    m_symbol = name;
    m_symbolSize = size;
    update();
}

double PillButton::radius() const
{
    return m_pillHeight >= Metrics::largePillHeight ? Metrics::pillRadiusLarge : Metrics::pillRadius;
}

QColor PillButton::fill() const
{
    const QColor colour = fillOf(m_pill);
    if (isDown())
        return Colours::withOpacity(colour, Metrics::pressedOpacity);
    if (isHovered())
        return hovered(m_pill, colour);
    return Colours::withOpacity(colour, isEnabled() ? 1 : Metrics::disabledOpacity);
}

QColor PillButton::border() const
{
    return m_pill == 1 ? Colours::pillBorder : QColor();
}

QColor PillButton::titleColour() const
{
    if (m_pill == 0)
        return Colours::white;
    return m_pill == 2 ? Colours::attention : Colours::navy;
}

QSize PillButton::sizeHint() const
{
    const int height = int(std::ceil(m_pillHeight));
    if (m_title.isEmpty())
        return {height, height};
    const int natural = fontMetrics().horizontalAdvance(m_title) + 2 * Metrics::pillChrome;
    return {natural + 2 * m_pad, height};
}

QSize PillButton::minimumSizeHint() const
{
    return sizeHint();
}

bool PillButton::isHovered() const
{
    return isEnabled() && testAttribute(Qt::WA_UnderMouse);
}

void PillButton::drawTitle(QPainter &painter) const
{
    const QRect area = rect().adjusted(m_pad, 0, -m_pad, 0);
    painter.setFont(font());
    painter.setPen(Colours::withOpacity(titleColour(), isEnabled() ? 1 : Metrics::disabledOpacity));
    painter.drawText(area, Qt::AlignCenter | Qt::TextSingleLine,
                     fontMetrics().elidedText(m_title, Qt::ElideRight, area.width()));
}

void PillButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF bounds(rect());
    const double inset = hasFocus() ? focusInset : 0;
    const QRectF body = bounds.adjusted(inset, inset, -inset, -inset);

    painter.setPen(Qt::NoPen);
    painter.setBrush(fill());
    painter.drawRoundedRect(body, radius() - inset, radius() - inset);
    if (border().isValid()) {
        const double half = Metrics::pillBorderWidth / 2;
        const double corner = radius() - inset - half;
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(border(), Metrics::pillBorderWidth));
        painter.drawRoundedRect(body.adjusted(half, half, -half, -half), corner, corner);
    }
    if (hasFocus())
        drawFocusRing(painter, bounds, radius());

    if (!m_title.isEmpty())
        drawTitle(painter);
    else if (!m_symbol.isEmpty())
        drawSymbol(painter, m_symbol,
                   Colours::withOpacity(titleColour(), isEnabled() ? 1 : Metrics::disabledOpacity),
                   m_symbolSize, bounds);
}

PillButton *Pill(const QString &title, int style, double height, QWidget *parent)
{
    auto *pill = new PillButton(parent);
    const bool large = height >= Metrics::largePillHeight;
    pill->setPill(style);
    pill->setPillHeight(height);
    pill->setPad(large ? Metrics::pillPadLarge : Metrics::pillPad);
    pill->setFont(large ? Rounded(16, QFont::DemiBold) : System(13, QFont::ExtraBold));
    pill->setTitle(title);
    return pill;
}

PillButton *IconPill(const QString &symbol, const QString &tip, int style, QWidget *parent)
{
    PillButton *pill = Pill(QString(), style, Metrics::iconPillHeight, parent);
    pill->setFixedWidth(Metrics::iconPillHeight);
    pill->setSymbol(symbol, Metrics::iconPillSymbol);
    pill->setToolTip(plainToolTip(tip));
    pill->setAccessibleName(tip);
    return pill;
}

} // namespace tuppi
