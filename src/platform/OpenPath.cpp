#include "platform/OpenPath.h"

#include <QDesktopServices>
#include <QUrl>

namespace tuppi {

bool OpenPath(const QString &path)
{
    return QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

} // namespace tuppi
