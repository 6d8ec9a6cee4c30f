#pragma once

#include "settings/Acknowledgements.h"
#include "ui/SideWindow.h"

#include <QUrl>

namespace tuppi {

/// Who is thanked, for what, under which licence.
class AcknowledgementsWindow : public SideWindow
{
    Q_OBJECT
public:
    explicit AcknowledgementsWindow(const QList<Acknowledgement> &rows);

Q_SIGNALS:
    /// A link was chosen, with the mouse or the keyboard.
    void linkChosen(const QUrl &url);
};

} // namespace tuppi
