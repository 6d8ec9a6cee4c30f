#pragma once

#include <QFileDialog>

namespace tuppi {

/// What a save dialog starts with.
struct SaveProposal
{
    QString folder;
    QString fileName;
    QString format;  ///< key of an export format
};

/// The desktop's own dialog for saving a transcript as a text file, as a sheet over a window that owns it. The
/// form of the text is chosen where such dialogs have the file's type. A file is replaced only after a question,
/// which is about the name as it will be saved. Not shown yet: connect its accepted() and open() it; it deletes
/// itself when it closes.
///
/// It has no meta-object of its own: under another name than its base class the toolkit would not give it the
/// desktop's look.
class SaveTextDialog : public QFileDialog
{
public:
    SaveTextDialog(const SaveProposal &proposal, QWidget *window);

    /// Always with the extension "txt"; empty when there is no name.
    QString chosenPath() const;
    QString chosenFormat() const;

protected:
    void accept() override;

private:
    void save();
    void askToReplace(bool isDesktops);
};

} // namespace tuppi
