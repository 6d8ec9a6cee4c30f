#include "app/AppDelegate.h"

namespace tuppi {

void AppDelegate::showResult(const QJsonObject &, bool)
{
}

void AppDelegate::closeResultWindowsForDir(const QString &)
{
}

} // namespace tuppi
