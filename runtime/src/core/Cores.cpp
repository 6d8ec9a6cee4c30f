#include "core/Cores.h"

#include <QFile>
#include <QString>

#include <algorithm>
#include <sched.h>

namespace engine {

namespace {

// What a decoder at work takes for itself, generously, with as much again left to everybody else.
constexpr long long bytesPerDecoder = 2LL * 128 * 1024 * 1024;

int usableCores()
{
    cpu_set_t cores;
    return ::sched_getaffinity(0, sizeof cores, &cores) == 0 ? CPU_COUNT(&cores) : 1;
}

long long availableBytes()
{
    QFile file(QStringLiteral("/proc/meminfo"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith("MemAvailable:"))
            return line.simplified().split(' ').value(1).toLongLong() * 1024;
    }
    return 0;
}

} // namespace

int decodersFor(int cores, long long availableBytes, const QString &asked)
{
    long long most = cores;
    if (availableBytes > 0)
        most = std::min(most, availableBytes / bytesPerDecoder);
    if (const int limit = asked.toInt(); limit > 0)
        most = std::min<long long>(most, limit);
    return int(std::max(most, 1LL));
}

int decodersAllowed()
{
    return decodersFor(usableCores(), availableBytes(), qEnvironmentVariable("TUPPI_DECODERS"));
}

} // namespace engine
