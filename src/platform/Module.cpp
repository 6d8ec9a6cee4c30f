#include "platform/Module.h"

#include <QCoreApplication>
#include <QLibrary>

namespace tuppi {

using namespace Qt::StringLiterals;

QFunctionPointer ResolveInModule(const QString &module, const char *function)
{
    // Beside the executable when built, in a folder of the libraries when installed.
    const QString folder = QCoreApplication::applicationDirPath();
    for (const QString &place : {folder, folder + u"/../lib/tuppi-transcriber"_s}) {
        QLibrary library(place + u'/' + module + u".so"_s);
        if (const QFunctionPointer resolved = library.resolve(function))
            return resolved;
    }
    return nullptr;
}

} // namespace tuppi
