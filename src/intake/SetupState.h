#pragma once

#include <QHash>
#include <QPointer>
#include <QSet>
#include <QString>
#include <QStringList>

namespace tuppi {

class SetupPanel;

/// The batch being set up, and the lengths of files. Main thread only.
struct SetupState
{
    QPointer<SetupPanel> panel;        ///< null exactly when no panel is open
    QStringList files;                 ///< full paths in the order of arrival, none twice; empty without a panel
    QSet<QString> listed;              ///< the same, to look up
    double seconds = 0;                ///< the known lengths of `files` together
    QHash<QString, double> durations;  ///< seconds by full path, 0 for unknown or being measured; outlives the panel
};

} // namespace tuppi
