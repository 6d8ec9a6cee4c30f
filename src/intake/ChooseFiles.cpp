#include "intake/ChooseFiles.h"

#include "intake/SetupFiles.h"
#include "settings/L.h"

#include <QFileDialog>

namespace tuppi {

using namespace Qt::StringLiterals;

QFileDialog *ChooseFilesDialog(QWidget *window)
{
    auto *dialog = new QFileDialog(window, L(u"Choose audio files to transcribe"_s));
    dialog->setObjectName("chooseFiles"_L1);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptOpen);
    dialog->setFileMode(QFileDialog::ExistingFiles);
    dialog->setSupportedSchemes({u"file"_s});
    // The patterns are more than a menu can show.
    dialog->setOption(QFileDialog::HideNameFilterDetails);
    dialog->setNameFilter(AudioFileFilter());
    dialog->setLabelText(QFileDialog::Accept, L(u"Add"_s));
    return dialog;
}

} // namespace tuppi
