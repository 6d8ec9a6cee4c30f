#include "ui/RowLayout.h"

#include "ui/Metrics.h"

#include <QStyle>

namespace tuppi {

namespace {

int centred(int outer, int inner)
{
    return (outer - inner) / 2;
}

/// Puts the buttons at the trailing edge; gives back where the first one begins.
int placeButtons(QSize row, const QList<QSize> &sizes, QList<QRect> &places)
{
    int width = sizes.isEmpty() ? 0 : int(sizes.size() - 1) * Metrics::rowButtonGap;
    for (const QSize &size : sizes)
        width += size.width();
    const int begin = row.width() - Metrics::rowMargin - width;
    int x = begin;
    for (const QSize &size : sizes) {
        places.append(QRect(QPoint(x, centred(row.height(), size.height())), size));
        x += size.width() + Metrics::rowButtonGap;
    }
    return begin;
}

} // namespace

RowPlaces PlaceRow(QSize row, const RowParts &parts, Qt::LayoutDirection direction)
{
    RowPlaces places;
    places.icon = QRect(QPoint(Metrics::rowMargin, centred(row.height(), parts.icon.height())), parts.icon);
    const int buttonsBegin = placeButtons(row, parts.buttons, places.buttons);

    const int left = places.icon.x() + parts.icon.width() + Metrics::rowMargin;
    const int width = qMax(0, buttonsBegin - Metrics::rowTextEnd - left);
    const int barHeight = parts.hasBar ? Metrics::barHeight + Metrics::rowTextGap : 0;
    const int stack = parts.titleHeight + Metrics::rowTextGap + barHeight + parts.detailHeight;
    int y = centred(row.height(), stack);
    places.title = QRect(left, y, width, parts.titleHeight);
    y += parts.titleHeight + Metrics::rowTextGap;
    if (parts.hasBar)
        places.bar = QRect(left, y, width, Metrics::barHeight);
    y += barHeight;
    places.detail = QRect(left, y, width, parts.detailHeight);

    const QRect bounds(QPoint(0, 0), row);
    for (QRect *place : {&places.icon, &places.title, &places.bar, &places.detail})
        *place = QStyle::visualRect(direction, bounds, *place);
    for (QRect &place : places.buttons)
        place = QStyle::visualRect(direction, bounds, place);
    return places;
}

} // namespace tuppi
