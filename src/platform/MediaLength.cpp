#include "platform/MediaLength.h"

#include "platform/MediaLengthModule.h"
#include "platform/Module.h"

namespace tuppi {

using namespace Qt::StringLiterals;

double MediaLength(const QString &path, const QDeadlineTimer &deadline, const std::atomic<bool> &cancelled)
{
    // Only when there is something to measure: FFmpeg brings a hundred libraries, whose loading would double
    // the time to the first window.
    using Reader = decltype(&tuppiMediaLength);
    static const auto reader =
        reinterpret_cast<Reader>(ResolveInModule(u"tuppi-media-length"_s, "tuppiMediaLength"));
    return reader ? reader(path, deadline, cancelled) : 0;
}

} // namespace tuppi
