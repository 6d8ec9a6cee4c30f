#pragma once

#include "platform/DBusCall.h"

#include <QObject>
#include <QString>

#include <optional>

class QFileSystemWatcher;

namespace tuppi {

/// The factor of [KDE] AnimationDurationFactor in the text of a kdeglobals file; nothing when the file does
/// not set it to a number.
std::optional<double> AnimationDurationFactor(const QByteArray &kdeglobals);

/// Whether the person asked the desktop for less motion, and every change of that while the program runs.
///
/// Asked in this order, the first that knows decides: the settings portal's "reduced-motion" when it is on
/// (off means "no preference"), the portal's "enable-animations", the animation factor of kdeglobals. Nobody
/// knows, or no session bus: not reduced. The first answer comes after the constructor, through changed().
class ReducedMotion : public QObject
{
    Q_OBJECT
public:
    /// `kdeglobals` is the path of that file, `limit` how long the portal may take, in milliseconds.
    explicit ReducedMotion(const QDBusConnection &session, const QString &kdeglobals = defaultKdeglobals(),
                           int limit = serviceLimit, QObject *parent = nullptr);

    bool isReduced() const { return m_reduced; }
    static QString defaultKdeglobals();

Q_SIGNALS:
    void changed(bool reduced);

private Q_SLOTS:
    void settingChanged(const QDBusMessage &signal);

private:
    void askPortal();
    void readPortal(const QDBusMessage &reply);
    void readKdeglobals();
    void watchKdeglobals();
    void update();

    QDBusConnection m_bus;
    QString m_kdeglobals;
    int m_limit;
    QFileSystemWatcher *m_watcher = nullptr; ///< made only where the portal knows nothing
    std::optional<bool> m_portal;
    std::optional<bool> m_file;
    bool m_asking = false;
    bool m_askAgain = false;
    bool m_reduced = false;
};

} // namespace tuppi
