#include "intake/SetupFiles.h"

#include "intake/AcceptedFiles.h"
#include "settings/L.h"

#include <QMimeDatabase>

#include <cmath>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

bool isAudioOrVideo(const QMimeType &type)
{
    // Playlists and cue sheets are text about recordings.
    return (type.name().startsWith("audio/"_L1) || type.name().startsWith("video/"_L1))
        && !type.inherits(u"text/plain"_s);
}

} // namespace

QStringList AddSetupFiles(SetupState &state, const QList<QUrl> &urls)
{
    QStringList unmeasured;
    for (const QUrl &url : urls) {
        const QString path = url.toLocalFile();
        if (path.isEmpty() || state.listed.contains(path))
            continue;
        state.listed.insert(path);
        state.files.append(path);
        const auto known = state.durations.constFind(path);
        if (known != state.durations.cend()) {
            state.seconds += *known;
            continue;
        }
        state.durations.insert(path, 0);
        unmeasured.append(path);
    }
    return unmeasured;
}

bool SetDuration(SetupState &state, const QString &path, double seconds)
{
    double &stored = state.durations[path];
    const double before = stored;
    stored = std::isfinite(seconds) && seconds > 0 ? seconds : 0;
    if (stored == before || !state.listed.contains(path))
        return false;
    state.seconds += stored - before;
    return true;
}

void ClearSetupFiles(SetupState &state)
{
    state.files.clear();
    state.listed.clear();
    state.seconds = 0;
}

QString AudioFileFilter()
{
    QSet<QString> patterns;
    for (const QString &extension : AcceptedExtensions())
        patterns.insert(u"*."_s + extension);
    for (const QMimeType &type : QMimeDatabase().allMimeTypes()) {
        if (!isAudioOrVideo(type))
            continue;
        for (const QString &pattern : type.globPatterns()) {
            if (pattern.startsWith("*."_L1))
                patterns.insert(pattern.toLower());
        }
    }
    // Some desktops match names by case.
    QStringList all(patterns.cbegin(), patterns.cend());
    for (const QString &pattern : std::as_const(patterns))
        all.append(pattern.toUpper());
    all.sort();
    return L(u"Audio and video"_s) + u" ("_s + all.join(u' ') + u')';
}

} // namespace tuppi
