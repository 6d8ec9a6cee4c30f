#pragma once

#include <QtGlobal>

QT_BEGIN_NAMESPACE
class QFileDialog;
class QWidget;
QT_END_NAMESPACE

namespace tuppi {

/// The desktop's own dialog for choosing recordings, as a sheet over a window that owns it. Offers whatever the
/// system takes for audio or video. Not shown yet: connect its accepted(), ask for its selectedUrls() then, and open()
/// it; of urlsSelected() a dialog drawn by Qt itself, where the desktop has none of its own, knows nothing. It deletes
/// itself when it closes.
QFileDialog *ChooseFilesDialog(QWidget *window);

} // namespace tuppi
