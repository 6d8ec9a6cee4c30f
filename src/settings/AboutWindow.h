#pragma once

#include "ui/SideWindow.h"

namespace tuppi {

/// The About panel: icon, name, version, credits.
class AboutWindow : public SideWindow
{
    Q_OBJECT
public:
    explicit AboutWindow(const QString &version);
};

} // namespace tuppi
