#pragma once

#include "platform/DBusCall.h"

#include <QDBusUnixFileDescriptor>
#include <QObject>
#include <QString>

namespace tuppi {

/// Keeps the computer from suspending while work is under way. The screen may still go dark.
///
/// Asks the inhibit portal, else logind; where neither grants it, the computer sleeps as it likes, and the
/// question is put again when one of the two appears. A grant that comes when it is no longer wanted, or
/// after this object has died, is given back at once.
class SleepInhibitor : public QObject
{
    Q_OBJECT
public:
    /// `reason` is what the desktop shows to the person. `limit`: how long a service may take, in
    /// milliseconds.
    SleepInhibitor(const QDBusConnection &session, const QDBusConnection &system, const QString &reason,
                   int limit = serviceLimit, QObject *parent = nullptr);
    ~SleepInhibitor() override;

    /// Returns at once; saying the same again does nothing.
    void setInhibited(bool inhibited);

    enum class Holder { Nobody, Portal, Logind };
    /// Who keeps the computer awake for this object now.
    Holder holder() const;

private Q_SLOTS:
    void portalResponded(const QDBusMessage &signal);

private:
    enum class Stage { Idle, AskingPortal, HeldByPortal, AskingLogind, HeldByLogind, Refused };

    void askPortal();
    void takePortalReply(const QDBusMessage &reply);
    void askLogind();
    void takeLogindReply(const QDBusMessage &reply);
    void portalFailed();
    void serviceAppeared(const QString &name);
    void release();
    void listen(const QString &request, bool on);

    QDBusConnection m_session;
    QDBusConnection m_system;
    QString m_reason;
    int m_limit;
    bool m_wanted = false;
    Stage m_stage = Stage::Idle;
    QString m_request;              ///< object path of the portal's request, asked for or granted
    bool m_portalCameLate = false;  ///< it appeared while logind was asked in its place
    int m_question = 0;             ///< number of the latest call to logind
    QDBusUnixFileDescriptor m_lock; ///< logind's lock, which ends when it is closed
};

} // namespace tuppi
