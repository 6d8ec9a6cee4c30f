#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QList>
#include <QObject>
#include <QString>
#include <QUrl>
#include <QVariantMap>

namespace tuppi {

/// What the launcher of this process handed over so that its window may come forward, as the platform data of
/// org.freedesktop.Application. To be read before QGuiApplication is made, which takes it out of the
/// environment.
QVariantMap LaunchTokens();

/// One running application per user: the first process owns the bus name and is asked by all later ones, and
/// by the desktop, through org.freedesktop.Application. Owned by main(), before any window; its death gives
/// the name up.
class SingleInstance : public QObject
{
    Q_OBJECT
public:
    explicit SingleInstance(const QDBusConnection &session, QObject *parent = nullptr);
    ~SingleInstance() override;

    enum class Role {
        Primary,    ///< this process owns the name; connect the signals before the event loop runs
        HandedOver, ///< the owner has taken the files over; this process has nothing left to do
        Alone,      ///< no session bus, or an owner that does not answer: run, without the name
    };

    /// Finds out the role, and hands `urls` (local files, absolute; none to bring the window forward) and
    /// `tokens` over where another process is the owner. Blocks for at most about `limit` milliseconds.
    Role start(const QList<QUrl> &urls, const QVariantMap &tokens, int limit = 5000);

Q_SIGNALS:
    /// The window is asked to come forward; `token` is for ActivateWindow().
    void activated(const QString &token);
    /// Files are to be opened, as they were sent (none to see whether this process answers); where that shows
    /// something, the window is to come forward.
    void openRequested(const QList<QUrl> &urls, const QString &token);

private:
    QDBusConnection m_bus;
    bool m_isOwner = false;
};

/// The side of SingleInstance that stands on the bus; owned by it.
class ApplicationAdaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")
public:
    explicit ApplicationAdaptor(SingleInstance *instance);

public Q_SLOTS:
    void Activate(const QVariantMap &platformData);
    void Open(const QStringList &uris, const QVariantMap &platformData);
    /// The application has no actions of its own to be started by name: any of them activates it.
    void ActivateAction(const QString &name, const QVariantList &parameter, const QVariantMap &platformData);

private:
    SingleInstance *m_instance;
};

} // namespace tuppi
