#include "platform/OpenPath.h"

#include <QDesktopServices>

namespace tuppi {

bool OpenPath(const QString &path)
{
    return OpenUrl(QUrl::fromLocalFile(path));
}

bool OpenUrl(const QUrl &url)
{
    return QDesktopServices::openUrl(url);
}

} // namespace tuppi
