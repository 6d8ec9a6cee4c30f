#include "viewer/PageRules.h"

#include <QFileInfo>

namespace tuppi {

using namespace Qt::StringLiterals;

bool IsNavigationAllowed(const QUrl &url)
{
    if (url.scheme() == "about"_L1)
        return true;
    return url.isLocalFile() && url.fileName() == "viewer.html"_L1;
}

bool IsRequestAllowed(const QUrl &url, const QString &callDir)
{
    const QString scheme = url.scheme();
    if (scheme == "data"_L1 || scheme == "blob"_L1 || scheme == "about"_L1)
        return true;
    // A file URL with a host names another computer.
    if (!url.isLocalFile() || !url.host().isEmpty() || callDir.isEmpty())
        return false;
    return QFileInfo(url.toLocalFile()).canonicalFilePath().startsWith(callDir + u'/');
}

} // namespace tuppi
