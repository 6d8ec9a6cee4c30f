#pragma once

#include <QtGlobal>

QT_BEGIN_NAMESPACE
class QFileDialog;
class QWidget;
QT_END_NAMESPACE

namespace tuppi {

/// The desktop's own dialog for choosing recordings, as a sheet over a window that owns it. Offers whatever the
/// system takes for audio or video. Not shown yet: connect its urlsSelected() and open() it; it deletes itself
/// when it closes.
QFileDialog *ChooseFilesDialog(QWidget *window);

} // namespace tuppi
