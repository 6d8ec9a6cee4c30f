#include "ui/LinkButton.h"

#include "ui/Colours.h"
#include "ui/Fonts.h"
#include "ui/Metrics.h"
#include "ui/Painting.h"

#include <QPainter>

namespace tuppi {
namespace {

constexpr int linkPadX = 8;
constexpr int linkPadY = 5;
constexpr double radius = 8;

} // namespace

LinkButton::LinkButton(const QString &title, QWidget *parent)
    : QPushButton(withoutMnemonic(title), parent)
    , m_title(title)
{
    setFont(System(13, QFont::ExtraBold));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAttribute(Qt::WA_Hover);
    setAutoDefault(true);
}

QSize LinkButton::sizeHint() const
{
    return {fontMetrics().horizontalAdvance(m_title) + 2 * linkPadX, fontMetrics().height() + 2 * linkPadY};
}

void LinkButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool lit = isEnabled() && (isDown() || testAttribute(Qt::WA_UnderMouse));
    if (lit) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(Colours::withOpacity(Colours::accentBlue, isDown() ? 0.16 : 0.08));
        painter.drawRoundedRect(QRectF(rect()), radius, radius);
    }
    painter.setPen(Colours::withOpacity(Colours::accentBlue, isEnabled() ? 1 : Metrics::disabledOpacity));
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, m_title);
    if (hasFocus())
        drawFocusRing(painter, QRectF(rect()), radius);
}

} // namespace tuppi
