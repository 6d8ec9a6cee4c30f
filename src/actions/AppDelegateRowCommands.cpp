#include "app/AppDelegate.h"

#include "app/Scheduler.h"
#include "engine/EngineCommands.h"
#include "engine/RunCallTimeout.h"
#include "settings/Fill.h"
#include "settings/L.h"
#include "ui/MainWindow.h"
#include "ui/Sheet.h"

namespace tuppi {

using namespace Qt::StringLiterals;

/// Runs a command that changes a job; its failure is reported under `title`, and the list is asked for anew.
void AppDelegate::runOnJob(const QStringList &arguments, const QString &title)
{
    RunCallTimeout(arguments, this,
                   [this, title](const EngineReply &reply) {
                       reportFailure(reply.status, reply.err, title);
                       // A poll already on its way may have read the state before the change.
                       m_jobs.polling = false;
                       poll();
                   },
                   0);
}

QString AppDelegate::jobIdOf(const QString &rowKey) const
{
    return rowWithKey(rowKey).value("id"_L1).toString();
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
    text.message = Fill(L(u"Cancel “%@”?"_s), {row.value("title"_L1).toString(L(u"this transcription"_s))});
    text.detail = L(u"Processing stops now. Finished steps are kept, so you can press Start Again later."_s);
    text.buttons = {L(u"Keep Going"_s), L(u"Cancel Transcription"_s)};
    text.destructiveButton = 1;
    Sheet::open(m_ui.window.get(), text, [this, id](int button) {
        if (button == 1)
            runOnJob(command::cancel(id), L(u"Could not cancel"_s));
    });
}

} // namespace tuppi
