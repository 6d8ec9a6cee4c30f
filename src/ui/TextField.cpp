#include "ui/TextField.h"

#include "ui/Colours.h"
#include "ui/Fonts.h"
#include "ui/LightPalette.h"
#include "ui/Metrics.h"
#include "ui/Painting.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QPainter>

namespace tuppi {
namespace {

constexpr int fieldHeight = 34;
constexpr int textPadX = 8;
constexpr double borderWidth = 1.5;

} // namespace

TextField::TextField(const QString &placeholder, int width, QWidget *parent)
    : QLineEdit(parent)
    , m_width(width)
{
    setFont(System(13));
    setPalette(LightPalette());
    setPlaceholderText(placeholder);
    setFrame(false);
    setTextMargins(textPadX, 0, textPadX, 0);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    // The ground is drawn here, rounded.
    QPalette clear = palette();
    clear.setColor(QPalette::Base, Qt::transparent);
    setPalette(clear);
}

QSize TextField::sizeHint() const
{
    constexpr int caret = 8;
    const int placeholder = fontMetrics().horizontalAdvance(placeholderText()) + 2 * textPadX + caret;
    return {qMax(m_width, placeholder), fieldHeight};
}

void TextField::contextMenuEvent(QContextMenuEvent *event)
{
    QMenu *menu = createStandardContextMenu();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setPalette(LightPalette()); // not the field's, whose ground is clear
    menu->popup(event->globalPos());
}

void TextField::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double half = borderWidth / 2;
    const double radius = Metrics::pillRadius;
    painter.setBrush(Colours::white);
    painter.setPen(QPen(Colours::pillBorder, borderWidth));
    painter.drawRoundedRect(QRectF(rect()).adjusted(half, half, -half, -half), radius - half, radius - half);
    if (hasFocus())
        drawFocusRing(painter, QRectF(rect()), radius);
    painter.end();
    QLineEdit::paintEvent(event);
}

} // namespace tuppi
