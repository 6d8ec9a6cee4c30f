#pragma once

#include "list/Rows.h"

#include <QDeadlineTimer>
#include <QString>

namespace tuppi {

/// What the list and the line under it show. Main thread only.
struct ListState
{
    RowList snapshot;          ///< the rows as shown; commands work on these, never on freshly built ones
    QString summary;           ///< the summary line as shown
    QString transientStatus;   ///< a short-lived message, shown until transientUntil
    QDeadlineTimer transientUntil;  ///< setting the clock does not move it
};

} // namespace tuppi
