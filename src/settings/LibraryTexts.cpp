#include "settings/LibraryTexts.h"

#include "settings/Fill.h"
#include "settings/L.h"

#include <cmath>
#include <limits>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

/// How many decimals a number of bytes is written with at most, in its unit.
int mostDecimals(double bytes)
{
    return bytes < 1e6 ? 0 : bytes < 1e9 ? 1 : 2;
}

double unitOf(double bytes)
{
    double unit = 1;
    while (bytes >= unit * 1000 && unit < 1e15)
        unit *= 1000;
    return unit;
}

} // namespace

QString AbbreviatedPath(const QString &path, const QString &home)
{
    if (home.isEmpty() || home == "/"_L1 || !path.startsWith(home))
        return path;
    const QString below = path.sliced(home.size());
    return below.isEmpty() || below.startsWith(u'/') ? u'~' + below : path;
}

QString SettingsSetAsideDetail(const QString &path, const QString &home)
{
    return Fill(L(u"Tuppi starts with the usual ones and an empty waiting list. The old file is kept as “%@”."_s),
                {AbbreviatedPath(path, home)});
}

qint64 KilobytesInReport(const QByteArray &report)
{
    const QByteArray trimmed = report.trimmed();
    qsizetype digits = 0;
    while (digits < trimmed.size() && trimmed.at(digits) >= '0' && trimmed.at(digits) <= '9')
        ++digits;
    return trimmed.first(digits).toLongLong();
}

QString SizeOnDisk(qint64 kilobytes, const QLocale &locale)
{
    if (kilobytes <= 0)
        return L(u"Empty"_s);
    const double bytes = double(kilobytes) * 1024;
    const double step = unitOf(bytes) / std::pow(10, mostDecimals(bytes));
    // Rounding may reach the next unit, so the number is rounded before it is given one.
    const double rounded = std::round(bytes / step) * step;
    if (rounded >= double(std::numeric_limits<qint64>::max()))
        return locale.formattedDataSize(std::numeric_limits<qint64>::max(), 0, QLocale::DataSizeSIFormat);
    const double inUnit = rounded / unitOf(rounded);
    int decimals = 0;
    for (double shown = inUnit; decimals < mostDecimals(rounded) && std::abs(shown - std::round(shown)) > 1e-6; ++decimals)
        shown *= 10;
    return locale.formattedDataSize(qint64(std::llround(rounded)), decimals, QLocale::DataSizeSIFormat);
}

} // namespace tuppi
