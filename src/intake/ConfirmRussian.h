#pragma once

#include <QtGlobal>

#include <functional>

QT_BEGIN_NAMESPACE
class QWidget;
QT_END_NAMESPACE

namespace tuppi {

/// Asks on a sheet over the window whether Russian is really meant, and answers once: true exactly when it was
/// accepted. Cancel is the default and the Escape key. The sheet belongs to the window; when the window goes, no
/// answer comes.
void confirmRussianOn(QWidget *window, std::function<void(bool)> then);

} // namespace tuppi
