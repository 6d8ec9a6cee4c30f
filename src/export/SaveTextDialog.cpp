#include "export/SaveTextDialog.h"

#include "export/TextFile.h"
#include "export/TranscriptText.h"
#include "settings/Fill.h"
#include "settings/L.h"
#include "ui/Sheet.h"

#include <QFileInfo>

namespace tuppi {

using namespace Qt::StringLiterals;

namespace {

QString filterOf(const ExportFormat &format)
{
    return L(format.title) + u" (*.txt)"_s;
}

} // namespace

SaveTextDialog::SaveTextDialog(const SaveProposal &proposal, QWidget *window)
    : QFileDialog(window, L(u"Save the transcript as a text file"_s))
{
    setObjectName("saveText"_L1);
    setAttribute(Qt::WA_DeleteOnClose);
    setAcceptMode(QFileDialog::AcceptSave);
    setFileMode(QFileDialog::AnyFile);
    setSupportedSchemes({u"file"_s});
    setOption(QFileDialog::HideNameFilterDetails);
    setLabelText(QFileDialog::FileType, L(u"Format:"_s));
    setLabelText(QFileDialog::Accept, L(u"Save"_s));
    QStringList filters;
    QString chosen;
    for (const ExportFormat &format : ExportFormats()) {
        filters.append(filterOf(format));
        if (format.key == proposal.format)
            chosen = filters.constLast();
    }
    setNameFilters(filters);
    if (!chosen.isEmpty())
        selectNameFilter(chosen);
    setDirectory(proposal.folder);
    selectFile(proposal.fileName);
}

QString SaveTextDialog::chosenPath() const
{
    const QString typed = selectedFiles().value(0);
    return typed.isEmpty() ? QString() : WithTextSuffix(typed);
}

QString SaveTextDialog::chosenFormat() const
{
    const QString selected = selectedNameFilter();
    for (const ExportFormat &format : ExportFormats()) {
        // Qt's own dialog gives the filter without the details that it hides.
        if (selected == filterOf(format) || selected == L(format.title))
            return format.key;
    }
    return u"timestamps"_s;
}

void SaveTextDialog::accept()
{
    const QString typed = selectedFiles().value(0);
    const QString path = chosenPath();
    const bool isDesktops = testAttribute(Qt::WA_DontShowOnScreen);
    // The desktop's dialog has asked already, about the name as it was typed.
    const bool isAsked = isDesktops && path == typed;
    if (isAsked || QFileInfo(typed).isDir() || !QFileInfo(path).isFile())
        save();
    else
        askToReplace(isDesktops);
}

void SaveTextDialog::save()
{
    setOption(QFileDialog::DontConfirmOverwrite); // the question has been answered
    QFileDialog::accept();
}

void SaveTextDialog::askToReplace(bool isDesktops)
{
    constexpr int cancel = 0;
    constexpr int replace = 1;
    SheetText text;
    text.message = Fill(L(u"“%@” already exists. Do you want to replace it?"_s), {QFileInfo(chosenPath()).fileName()});
    text.detail = L(u"Replacing it will overwrite its current contents."_s);
    text.buttons = {L(u"Cancel"_s), L(u"Replace"_s)};
    text.defaultButton = cancel;
    text.destructiveButton = replace;
    // The desktop's dialog is no widget that a sheet could stand over, and may be closed by now.
    QWidget *over = isDesktops ? parentWidget() : this;
    connect(Sheet::open(over, text), &Sheet::answered, this, [this, isDesktops](int button) {
        if (button == replace) {
            save();
        } else if (isDesktops) {
            hide();
            open();
        }
    });
}

} // namespace tuppi
