#pragma once

#include "platform/DBusCall.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QString>

namespace tuppi {

/// Posts notices through the desktop's notification service. Every call returns at once; where the service is
/// missing or does not answer, nothing is shown and nothing is said.
class Notifier : public QObject
{
    Q_OBJECT
public:
    /// `actionText` stands on the button of a notice; a click on the notice itself does the same. `limit`: how
    /// long the service may take, in milliseconds.
    Notifier(const QDBusConnection &session, const QString &actionText, int limit = serviceLimit,
             QObject *parent = nullptr);

    /// Takes the place of the last notice with that identifier where it is still shown. Plain texts.
    void post(const QString &identifier, const QString &title, const QString &body);

Q_SIGNALS:
    /// The person clicked a notice. `token` is for ActivateWindow().
    void clicked(const QString &identifier, const QString &token);

private Q_SLOTS:
    void actionInvoked(const QDBusMessage &signal);
    void activationToken(const QDBusMessage &signal);
    void notificationClosed(const QDBusMessage &signal);

private:
    struct Notice
    {
        QString identifier;
        QString title;
        QString body;
    };
    /// A notice that a service shows. Its numbers mean nothing to another one.
    struct Shown
    {
        QString service;
        uint number = 0;
        QString token;
    };
    using ShownNotices = QHash<QString, Shown>;

    void postNext();
    void send(const Notice &notice, const QStringList &capabilities, const QString &service);
    void takeReply(const QString &identifier, const QDBusMessage &reply);
    ShownNotices::iterator shownBy(const QDBusMessage &signal);

    QDBusConnection m_bus;
    QString m_actionText;
    int m_limit;
    QList<Notice> m_waiting;
    bool m_asking = false;
    ShownNotices m_shown;  ///< by identifier
};

} // namespace tuppi
