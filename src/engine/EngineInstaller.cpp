#include "engine/EngineInstaller.h"

#include <QDir>
#include <QFileInfo>

namespace tuppi {

using namespace Qt::StringLiterals;

QString EngineInstallerFor(const QString &executableFolder)
{
    const QString installer =
        QDir::cleanPath(executableFolder + u"/../lib/tuppi-transcriber/engine/install-engine"_s);
    return QFileInfo(installer).isFile() ? installer : QString();
}

bool EngineSetupFailed(int status)
{
    constexpr int anotherEngine = 3;
    return status != 0 && status != anotherEngine;
}

void SetUpEngine(const QString &installer, QObject *context, Completion completion)
{
    RunRead(
        [installer, options = RunOptions()] { return RunAndWait(u"/bin/bash"_s, {installer, u"--link"_s}, options); }, context,
        Decoded, std::move(completion));
}

} // namespace tuppi
