#pragma once

#include <QtGlobal>

QT_BEGIN_NAMESPACE
class QApplication;
QT_END_NAMESPACE

namespace tuppi {

/// Gives the whole application its light look, whatever the desktop's theme is: one style, one palette.
void applyAppearance(QApplication &application);

/// Gives every window the application's icon. Call it when the first one is on the screen, which need not wait for
/// four pictures.
void applyIcon();

} // namespace tuppi
