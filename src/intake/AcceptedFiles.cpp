#include "intake/AcceptedFiles.h"

#include <QFileInfo>

namespace tuppi {

using namespace Qt::StringLiterals;

const QStringList &AcceptedExtensions()
{
    static const QStringList extensions{u"m4a"_s, u"mp3"_s,  u"wav"_s,  u"mp4"_s,  u"mov"_s, u"aac"_s, u"flac"_s,
                                        u"ogg"_s, u"opus"_s, u"webm"_s, u"aiff"_s, u"aif"_s, u"caf"_s, u"mkv"_s};
    return extensions;
}

bool IsAcceptedFile(const QString &path)
{
    const QFileInfo file(path);
    // A dot at the beginning hides the file; it does not part a name from its extension.
    return !file.completeBaseName().isEmpty() && AcceptedExtensions().contains(file.suffix().toLower());
}

QList<QUrl> AcceptedFiles(const QList<QUrl> &urls)
{
    QList<QUrl> accepted;
    for (const QUrl &url : urls) {
        if (url.isLocalFile() && IsAcceptedFile(url.toLocalFile()))
            accepted.append(url);
    }
    return accepted;
}

} // namespace tuppi
