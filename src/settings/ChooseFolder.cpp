#include "settings/ChooseFolder.h"

#include "settings/L.h"

#include <QFileDialog>

namespace tuppi {

using namespace Qt::StringLiterals;

QFileDialog *ChooseFolderDialog(QWidget *window, const QString &current)
{
    auto *dialog = new QFileDialog(window, L(u"Choose where Tuppi Transcriber saves transcripts"_s));
    dialog->setObjectName("chooseFolder"_L1);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptOpen);
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    dialog->setSupportedSchemes({u"file"_s});
    dialog->setLabelText(QFileDialog::Accept, L(u"Use This Folder"_s));
    if (!current.isEmpty())
        dialog->setDirectory(current);
    return dialog;
}

} // namespace tuppi
