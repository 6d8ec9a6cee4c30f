#pragma once

#include "intake/SetupState.h"

#include <QList>
#include <QUrl>

namespace tuppi {

/// Appends the local files that are not in the batch yet, in order, and gives back the paths whose length is
/// now to be measured. Each path is asked for once in the life of the state.
QStringList AddSetupFiles(SetupState &state, const QList<QUrl> &urls);

/// Takes a measured length in; anything but a positive, finite number of seconds counts as unknown. True when
/// the total of the batch changed.
bool SetDuration(SetupState &state, const QString &path, double seconds);

/// Forgets the batch. The lengths stay.
void ClearSetupFiles(SetupState &state);

/// One filter for a file dialog: every name pattern that the system takes for audio or video, and every
/// accepted extension.
QString AudioFileFilter();

} // namespace tuppi
