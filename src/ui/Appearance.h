#pragma once

#include <QtGlobal>

QT_BEGIN_NAMESPACE
class QApplication;
QT_END_NAMESPACE

namespace tuppi {

/// Gives the whole application its light look, whatever the desktop's theme is: one style, one palette.
void applyAppearance(QApplication &application);

} // namespace tuppi
