#include "platform/MediaLength.h"

#include "platform/MediaLengthModule.h"

#include <QCoreApplication>
#include <QLibrary>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

using Reader = decltype(&tuppiMediaLength);

/// Beside the executable when built, in a folder of the libraries when installed; null where it is missing.
Reader loadReader()
{
    const QString folder = QCoreApplication::applicationDirPath();
    for (const QString &place : {folder, folder + u"/../lib/tuppi-transcriber"_s}) {
        QLibrary module(place + u"/tuppi-media-length.so"_s);
        if (const QFunctionPointer function = module.resolve("tuppiMediaLength"))
            return reinterpret_cast<Reader>(function);
    }
    return nullptr;
}

} // namespace

double MediaLength(const QString &path, const QDeadlineTimer &deadline, const std::atomic<bool> &cancelled)
{
    // Only when there is something to measure: FFmpeg brings a hundred libraries, whose loading would double
    // the time to the first window.
    static const Reader reader = loadReader();
    return reader ? reader(path, deadline, cancelled) : 0;
}

} // namespace tuppi
