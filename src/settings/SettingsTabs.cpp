#include "settings/SettingsTabs.h"

#include "ui/Colours.h"
#include "ui/Fonts.h"
#include "ui/Painting.h"

#include <QKeyEvent>
#include <QPainter>

namespace tuppi {
namespace {

constexpr int tabHeight = 62;
constexpr int leastWidth = 76;
constexpr int padX = 12;
constexpr int symbolTop = 7;
constexpr int symbolSize = 26;
constexpr int titleTop = 35;
constexpr int gapX = 2; ///< on either side of a tab's ground
constexpr double radius = 11;

} // namespace

SettingsTabs::SettingsTabs(QWidget *parent)
    : QTabBar(parent)
{
    setFont(System(12, QFont::DemiBold));
    setAttribute(Qt::WA_Hover);
    setDrawBase(false);
    setExpanding(false);
    setUsesScrollButtons(false);
    setElideMode(Qt::ElideNone);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void SettingsTabs::addTabOf(const QString &symbol, const QString &title)
{
    // An ampersand is an ampersand, not a shortcut.
    const int tab = addTab(withoutMnemonic(title));
    setTabData(tab, symbol);
    setAccessibleTabName(tab, title);
}

QSize SettingsTabs::tabSizeHint(int index) const
{
    return {qMax(leastWidth, fontMetrics().horizontalAdvance(accessibleTabName(index)) + 2 * padX), tabHeight};
}

QSize SettingsTabs::sizeHint() const
{
    int width = 0;
    for (int tab = 0; tab < count(); ++tab)
        width += tabSizeHint(tab).width();
    return {width, tabHeight};
}

void SettingsTabs::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Home)
        setCurrentIndex(0);
    else if (event->key() == Qt::Key_End)
        setCurrentIndex(count() - 1);
    else
        QTabBar::keyPressEvent(event);
}

void SettingsTabs::paintTab(QPainter &painter, int index, bool lit) const
{
    const QRect place = tabRect(index);
    const QRectF ground = QRectF(place).adjusted(gapX, 0, -gapX, 0);
    const bool current = index == currentIndex();
    if (current || lit) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(current ? Colours::cardBorder : Colours::paleCard);
        painter.drawRoundedRect(ground, radius, radius);
    }
    const QColor colour = current ? Colours::accentBlue : Colours::slate;
    drawSymbol(painter, tabData(index).toString(), colour, symbolSize,
               QRectF(place.left(), place.top() + symbolTop, place.width(), symbolSize));
    painter.setPen(colour);
    painter.setLayoutDirection(Qt::LayoutDirectionAuto);
    painter.drawText(QRect(place.left(), place.top() + titleTop, place.width(), tabHeight - titleTop - 4),
                     Qt::AlignCenter | Qt::TextSingleLine | Qt::TextDontClip, accessibleTabName(index));
    if (current && hasFocus())
        drawFocusRing(painter, ground, radius);
}

void SettingsTabs::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const int lit = underMouse() ? tabAt(mapFromGlobal(QCursor::pos())) : -1;
    for (int tab = 0; tab < count(); ++tab)
        paintTab(painter, tab, tab == lit);
}

} // namespace tuppi
