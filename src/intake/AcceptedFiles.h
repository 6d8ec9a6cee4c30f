#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

namespace tuppi {

/// The file name extensions of recordings, lower case, without the dot.
const QStringList &AcceptedExtensions();

/// True when the file's extension, in any case, is an accepted one. The file itself is not looked at.
bool IsAcceptedFile(const QString &path);

/// The accepted local files among `urls`, in order.
QList<QUrl> AcceptedFiles(const QList<QUrl> &urls);

} // namespace tuppi
