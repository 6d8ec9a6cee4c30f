#pragma once

#include <QList>
#include <QRect>

namespace tuppi {

/// Sizes of the parts of one row, in logical pixels.
struct RowParts
{
    QSize icon;
    int titleHeight = 0;
    int detailHeight = 0;
    bool hasBar = false;
    QList<QSize> buttons; ///< in reading order
};

/// Where they stand. Texts and bar share left edge and width; the bar's rectangle is empty without a bar.
struct RowPlaces
{
    QRect icon;
    QRect title;
    QRect bar;
    QRect detail;
    QList<QRect> buttons;
};

/// The row's layout as a value: mascot at the leading edge, texts beside it, buttons at the trailing edge,
/// all centred in height, mirrored from right to left.
RowPlaces PlaceRow(QSize row, const RowParts &parts, Qt::LayoutDirection direction);

} // namespace tuppi
