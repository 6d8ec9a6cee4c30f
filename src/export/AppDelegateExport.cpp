#include "app/AppDelegate.h"

namespace tuppi {

void AppDelegate::saveTextForDir(const QString &, QWidget *)
{
}

void AppDelegate::shareTextForDir(const QString &, QWidget *)
{
}

} // namespace tuppi
