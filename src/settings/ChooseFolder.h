#pragma once

#include <QtGlobal>

QT_BEGIN_NAMESPACE
class QFileDialog;
class QString;
class QWidget;
QT_END_NAMESPACE

namespace tuppi {

/// The desktop's own dialog for choosing where the transcripts are kept, as a sheet over a window that owns it; it
/// begins at `current` unless that is empty. Not shown yet: open() it; it deletes itself when it closes.
QFileDialog *ChooseFolderDialog(QWidget *window, const QString &current);

} // namespace tuppi
