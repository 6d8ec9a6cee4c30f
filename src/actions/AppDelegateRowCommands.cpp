#include "app/AppDelegate.h"

#include "actions/Removal.h"
#include "actions/RenameSheet.h"
#include "app/Scheduler.h"
#include "engine/EngineCommands.h"
#include "engine/RunCallTimeout.h"
#include "engine/Stages.h"
#include "platform/OpenPath.h"
#include "platform/RevealInFileManager.h"
#include "settings/L.h"
#include "ui/MainWindow.h"
#include "ui/Sheet.h"

#include <QDir>
#include <QFileInfo>

namespace tuppi {

using namespace Qt::StringLiterals;

/// Runs a command that changes jobs, and `succeeded` when it ended well; its failure is reported under `title`.
/// The list is asked for anew.
void AppDelegate::runOnJob(const QStringList &arguments, const QString &title, std::function<void()> succeeded)
{
    RunCallTimeout(arguments, this,
                   [this, title, succeeded = std::move(succeeded)](const EngineReply &reply) {
                       if (reply.status == 0 && succeeded)
                           succeeded();
                       reportFailure(reply.status, reply.err, title);
                       pollAnew();
                   },
                   0);
}

QString AppDelegate::jobIdOf(const QString &rowKey) const
{
    return rowWithKey(rowKey).value("id"_L1).toString();
}

void AppDelegate::openRowViewer(const QString &rowKey)
{
    showResult(rowWithKey(rowKey), false);
}

void AppDelegate::openRowText(const QString &rowKey)
{
    showResult(rowWithKey(rowKey), true);
}

void AppDelegate::copyRowText(const QString &rowKey)
{
    const QString id = jobIdOf(rowKey);
    if (id.isEmpty())
        return;
    const auto copied = [this](const EngineReply &reply) {
        flash(reply.status == 0 ? L(u"Text copied — paste it anywhere with ⌘V"_s) : L(u"Could not copy the text"_s));
    };
    whenTextIsWhole(rowWithKey(rowKey).value("call_dir"_L1).toString(), m_ui.window.get(),
                    [this, id, copied] { RunCallTimeout(command::copyTranscript(id), this, copied, 0); });
}

void AppDelegate::showRowInFinder(const QString &rowKey)
{
    const QString callDir = rowWithKey(rowKey).value("call_dir"_L1).toString();
    if (callDir.isEmpty())
        return;
    if (QFileInfo::exists(callDir))
        RevealInFileManager(QDBusConnection::sessionBus(), callDir, this);
    else
        flash(L(u"The folder of this transcript is no longer there."_s));
}

void AppDelegate::renameRow(const QString &rowKey)
{
    const QJsonObject row = rowWithKey(rowKey);
    const QString id = row.value("id"_L1).toString();
    if (id.isEmpty() || IsActiveStage(row.value("status"_L1).toString()))
        return;
    askForTitle(m_ui.window.get(), row.value("title"_L1).toString(), [this, row, id](const QString &title) {
        // A viewer that is opened again shows the new title.
        runOnJob(command::rename(id, title), L(u"Could not rename"_s),
                 [this, row] { closeResultWindowsForDir(row.value("call_dir"_L1).toString()); });
    });
}

void AppDelegate::pauseRow(const QString &rowKey)
{
    const QString id = jobIdOf(rowKey);
    if (!id.isEmpty())
        runOnJob(command::pause(id), L(u"Could not pause"_s));
}

void AppDelegate::resumeRow(const QString &rowKey)
{
    const QString id = jobIdOf(rowKey);
    if (id.isEmpty())
        return;
    if (busyExcept(id))
        flash(L(u"Tuppi is working on another file. Resume this one when it is done."_s));
    else
        runOnJob(command::resumeJob(id), L(u"Could not resume"_s));
}

void AppDelegate::retryRow(const QString &rowKey)
{
    const QString id = jobIdOf(rowKey);
    if (id.isEmpty())
        return;
    if (busyExcept(id))
        flash(L(u"Tuppi is working on another file. Try again when it is done."_s));
    else
        runOnJob(command::retry(id), L(u"Could not start again"_s));
}

void AppDelegate::cancelRow(const QString &rowKey)
{
    const QJsonObject row = rowWithKey(rowKey);
    const QString id = row.value("id"_L1).toString();
    if (id.isEmpty())
        return;
    SheetText text;
    text.message = CancelTitle(row);
    text.detail = L(u"Processing stops now. Finished steps are kept, so you can press Start Again later."_s);
    text.buttons = {L(u"Keep Going"_s), L(u"Cancel Transcription"_s)};
    text.destructiveButton = 1;
    Sheet::open(m_ui.window.get(), text, [this, id](int button) {
        if (button == 1)
            runOnJob(command::cancel(id), L(u"Could not cancel"_s));
    });
}

void AppDelegate::openLibrary()
{
    const QString library = LibraryPath(m_jobs.library);
    QDir().mkpath(library);
    openPath(library);
}

void AppDelegate::openPath(const QString &path)
{
    if (!path.isEmpty() && QFileInfo::exists(path) && !OpenPath(path))
        flash(L(u"There is no program to open it with."_s));
}

} // namespace tuppi
