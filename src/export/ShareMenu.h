#pragma once

#include "export/ShareChoices.h"

#include <functional>

QT_BEGIN_NAMESPACE
class QWidget;
QT_END_NAMESPACE

namespace tuppi {

/// Opens a menu of these choices under `anchor`, whose window owns it, and calls `chosen` with the one that was
/// taken. Nothing happens while another menu is open.
void openShareMenu(QWidget *anchor, const QList<ShareChoice> &choices, std::function<void(ShareChoice)> chosen);

} // namespace tuppi
