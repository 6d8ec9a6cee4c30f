#include "intake/AcceptedFiles.h"

#include <algorithm>
#include <iterator>

namespace tuppi {

namespace {

/// The extension of the last path component; none for a name that is nothing but a leading dot and text
/// (a hidden file), and none for a folder written with its closing slash.
QString extensionOf(const QString &path)
{
    const QString name = path.section(u'/', -1);
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot > 0 ? name.mid(dot + 1).toLower() : QString();
}

bool isOnThisComputer(const QUrl &url)
{
    return url.isLocalFile() && (url.host().isEmpty() || url.host() == QLatin1String("localhost"));
}

} // namespace

const QStringList &acceptedExtensions()
{
    static const QStringList extensions{u"m4a"_qs,  u"mp3"_qs,  u"wav"_qs, u"mp4"_qs,  u"mov"_qs,
                                        u"aac"_qs,  u"flac"_qs, u"ogg"_qs, u"opus"_qs, u"webm"_qs,
                                        u"aiff"_qs, u"aif"_qs,  u"caf"_qs, u"mkv"_qs};
    return extensions;
}

bool isAcceptedAudioFile(const QUrl &url)
{
    return isOnThisComputer(url) && acceptedExtensions().contains(extensionOf(url.path(QUrl::FullyDecoded)));
}

QList<QUrl> acceptedAudioFiles(const QList<QUrl> &urls)
{
    QList<QUrl> accepted;
    std::copy_if(urls.cbegin(), urls.cend(), std::back_inserter(accepted), isAcceptedAudioFile);
    return accepted;
}

} // namespace tuppi
