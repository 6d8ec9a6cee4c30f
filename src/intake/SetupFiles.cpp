#include "intake/SetupFiles.h"

#include "intake/AcceptedFiles.h"
#include "settings/L.h"

#include <QMimeDatabase>

#include <cmath>
#include <utility>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

bool isAudioOrVideo(const QMimeType &type)
{
    // Lists of recordings are none.
    static const QStringList lists{u"audio/x-scpls"_s, u"audio/x-ms-asx"_s, u"audio/x-iriver-pla"_s};
    return (type.name().startsWith("audio/"_L1) || type.name().startsWith("video/"_L1))
        && !type.inherits(u"text/plain"_s) && !lists.contains(type.name());
}

/// A plain extension, which every desktop's dialog understands.
bool isExtension(const QString &pattern)
{
    return pattern.startsWith("*."_L1) && !pattern.contains(u'[');
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
            if (isExtension(pattern))
                patterns.insert(pattern.toLower());
        }
    }
    QStringList all(patterns.cbegin(), patterns.cend());
    for (const QString &pattern : std::as_const(patterns))
        all.append(pattern.toUpper()); // some desktops match names by case
    all.removeDuplicates();
    all.sort();
    return L(u"Audio and video"_s) + u" ("_s + all.join(u' ') + u')';
}

} // namespace tuppi
