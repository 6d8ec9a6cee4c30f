#pragma once

#include "engine/RunCallTimeout.h"

#include <QString>

namespace tuppi {

/// The engine's installer, where it stands as a package puts it: relative to the executable's folder. Empty
/// elsewhere, as in a build folder.
QString EngineInstallerFor(const QString &executableFolder);

/// Whether an installer's exit status tells of a failure; an engine that is not ours is none.
bool EngineSetupFailed(int status);

/// Sets the engine up under the user's home, off the main thread, and says on `context`'s thread how it went.
/// Returns at once.
void SetUpEngine(const QString &installer, QObject *context, Completion completion);

} // namespace tuppi
