#include "intake/SetupTexts.h"

#include "settings/Fill.h"
#include "settings/L.h"

#include <algorithm>

namespace tuppi {

using namespace Qt::StringLiterals;

SetupTexts TextsOfBatch(const QStringList &paths, double seconds)
{
    return {FileListLines(paths), LengthText(seconds), StartTitle(paths.size())};
}

QStringList FileListLines(const QStringList &paths)
{
    constexpr qsizetype mostListedWhole = 6;
    constexpr qsizetype listedOfMore = 5;
    const bool whole = paths.size() <= mostListedWhole;
    QStringList lines;
    for (const QString &path : paths.first(whole ? paths.size() : listedOfMore))
        lines.append(path.section(u'/', -1));
    if (!whole)
        lines.append(Fill(L(u"and %lu more"_s), {paths.size() - listedOfMore}));
    return lines;
}

QString LengthText(double seconds)
{
    constexpr qint64 secondsPerMinute = 60;
    constexpr qint64 minutesPerHour = 60;
    constexpr double longest = 1e12; // beyond any recording; keeps a damaged file's claim within whole numbers
    if (!(seconds > 0))
        return {};
    const qint64 minutes = std::max(qint64(std::min(seconds, longest)), secondsPerMinute) / secondsPerMinute;
    if (minutes < minutesPerHour)
        return Fill(L(u"%ldm"_s), {minutes});
    const qint64 hours = minutes / minutesPerHour;
    const qint64 rest = minutes % minutesPerHour;
    return rest == 0 ? Fill(L(u"%ldh"_s), {hours}) : Fill(L(u"%ldh %ldm"_s), {hours, rest});
}

QString StartTitle(qsizetype fileCount)
{
    return fileCount >= 2 ? Fill(L(u"Start Transcription (%lu files)"_s), {fileCount}) : L(u"Start Transcription"_s);
}

} // namespace tuppi
