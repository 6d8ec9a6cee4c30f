#include "app/AppDelegate.h"

#include "actions/Removal.h"
#include "engine/EngineCommands.h"
#include "engine/RunCallTimeout.h"
#include "platform/Trash.h"
#include "settings/L.h"
#include "ui/MainWindow.h"
#include "ui/Sheet.h"

#include <QApplication>

namespace tuppi {

using namespace Qt::StringLiterals;

namespace {

/// Why a folder stayed where it is, in the interface language.
QString reasonOf(const TrashResult &result)
{
    switch (result.outcome) {
    case TrashOutcome::Moved:
        break;
    case TrashOutcome::Gone:
        return L(u"It is no longer there."_s);
    case TrashOutcome::Forbidden:
        return L(u"You do not have permission to move it."_s);
    case TrashOutcome::NoTrash:
        return L(u"The drive it is on has no Trash."_s);
    case TrashOutcome::Failed:
        return result.systemError;
    }
    return {};
}

} // namespace

void AppDelegate::removeRow(const QString &rowKey)
{
    const Rows &rows = m_list.snapshot.rows;
    const QJsonObject row = rowWithKey(rowKey);
    if (IsRemovable(row))
        removeCalls(rows.jobs.only(RowIndex(rows, rowKey) - rows.locals()), RemoveTitle(row));
}

void AppDelegate::clearList()
{
    const JobList rows = FinishedRows(m_list.snapshot.rows);
    if (rows.isEmpty())
        flash(L(u"Nothing to clear"_s));
    else
        removeCalls(rows, ClearListTitle(rows.size()));
}

void AppDelegate::removeCalls(const JobList &rows, const QString &title)
{
    if (rows.isEmpty()) {
        QApplication::beep();
        return;
    }
    SheetText text;
    text.message = title;
    text.detail = RemoveDetail(m_jobs.library);
    text.buttons = {L(u"Remove from List"_s), L(u"Move to Trash"_s), L(u"Cancel"_s)};
    text.destructiveButton = 1;
    text.escapeButton = 2;
    Sheet::open(m_ui.window.get(), text, [this, rows](int button) {
        if (button == 0)
            runOnJob(command::hide(IdsOf(rows)), L(u"Could not remove from the list"_s));
        else if (button == 1)
            confirmTrash(rows);
    });
}

void AppDelegate::confirmTrash(const JobList &rows)
{
    if (rows.size() < 2) {
        trashFolders(rows);
        return;
    }
    SheetText text;
    text.message = TrashTitle(rows.size());
    text.detail = L(u"You can restore them from the Trash until you empty it."_s);
    text.buttons = {L(u"Keep"_s), L(u"Move to Trash"_s)};
    text.destructiveButton = 1;
    Sheet::open(m_ui.window.get(), text, [this, rows](int button) {
        if (button == 1)
            trashFolders(rows);
    });
}

void AppDelegate::trashFolders(const JobList &rows)
{
    QStringList lines;
    QStringList paths;
    QList<DoomedFolder> folders;
    for (const DoomedFolder &folder : FoldersOf(rows)) {
        if (IsTranscriptFolder(folder.path, m_jobs.library)) {
            folders.append(folder);
            paths.append(folder.path);
        } else {
            lines.append(TrashFailureLine(folder, L(u"This is not the folder of a transcript."_s)));
        }
    }
    // What was corrected goes along, and nothing is written into a folder on its way.
    m_viewer.whenSaved(paths, [this, paths, folders, lines](bool) {
        MoveAllToTrash(paths, this, [this, folders, lines](const QList<TrashResult> &results) {
            trashEnded(folders, results, lines);
        });
    });
}

/// `lines` tells of the folders that were not even tried.
void AppDelegate::trashEnded(const QList<DoomedFolder> &folders, const QList<TrashResult> &results, QStringList lines)
{
    for (qsizetype index = 0; index < results.size(); ++index) {
        if (results.at(index).outcome == TrashOutcome::Moved)
            closeResultWindowsForDir(folders.at(index).path);
        else
            lines.append(TrashFailureLine(folders.at(index), reasonOf(results.at(index))));
    }
    if (!lines.isEmpty()) {
        SheetText text;
        text.message = L(u"Some folders could not be moved to the Trash"_s);
        text.detail = lines.join(u'\n');
        Sheet::open(m_ui.window.get(), text);
    }
    pollAnew();
}

void AppDelegate::showHidden()
{
    RunCallTimeout(command::unhideAll(), this, [this](const EngineReply &) { pollAnew(); }, 0);
}

} // namespace tuppi
