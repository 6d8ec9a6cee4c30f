#include "app/AppDelegate.h"

#include "engine/DebugLog.h"
#include "platform/Notifier.h"
#include "settings/Fill.h"
#include "settings/L.h"

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

const QString noticePrefix = u"tr-"_s;

} // namespace

NoticeState::NoticeState() = default;
NoticeState::~NoticeState() = default;

void AppDelegate::notifyTransitions(const HistoryPointer &history)
{
    if (!m_ui.window || history == m_notices.seen)
        return;
    m_notices.seen = history;
    using Announcement = Transition::Announcement;
    QStringList changes; // a folder that comes back brings thousands
    for (const Transition &transition : FindTransitions(m_notices.memory, history->entries)) {
        if (transition.changed)
            changes.append(Fill(u"sound status %@: %@ -> %@"_s, {transition.id, transition.before, transition.status}));
        if (transition.announcement == Announcement::Ready) {
            notify(L(u"Transcript ready"_s), transition.title, transition.id);
            meow();
        } else if (transition.announcement == Announcement::Failed) {
            notify(L(u"Transcription failed"_s), transition.title, transition.id);
        }
    }
    DebugLogLines(changes);
}

void AppDelegate::notify(const QString &title, const QString &body, const QString &callId)
{
    if (!m_queue.defaults.isOn(u"notify"_s))
        return;
    if (!m_notices.notifier) {
        m_notices.notifier = std::make_unique<Notifier>(QDBusConnection::sessionBus(), L(u"Open"_s));
        connect(m_notices.notifier.get(), &Notifier::clicked, this, &AppDelegate::noticeClicked);
    }
    m_notices.notifier->post(noticePrefix + callId, title, body);
}

void AppDelegate::noticeClicked(const QString &identifier, const QString &token)
{
    applicationShouldHandleReopen(token);
    const QString id = identifier.sliced(noticePrefix.size());
    const JobList &entries = m_jobs.history->entries;
    const qsizetype job = entries.indexOfId(id);
    if (job >= 0 && entries.statusAt(job) == "ready"_L1)
        showResult(entries.at(job), false);
}

} // namespace tuppi
