#include "platform/ReducedMotion.h"
#include "platform/Portal.h"

#include <QDBusArgument>
#include <QDBusServiceWatcher>
#include <QFile>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QStandardPaths>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

using Settings = QMap<QString, QVariantMap>;

const QString settingsPortal = u"org.freedesktop.portal.Settings"_s;
const QString appearance = u"org.freedesktop.appearance"_s;
const QString reducedMotion = u"reduced-motion"_s;
const QString gnomeInterface = u"org.gnome.desktop.interface"_s;
const QString enableAnimations = u"enable-animations"_s;

/// What the portal's answer says; nothing when it says nothing.
std::optional<bool> wish(const Settings &settings)
{
    const QVariant reduced = settings.value(appearance).value(reducedMotion);
    if (reduced.typeId() == QMetaType::UInt && reduced.toUInt() == 1)
        return true;
    const QVariant animations = settings.value(gnomeInterface).value(enableAnimations);
    if (animations.typeId() == QMetaType::Bool)
        return !animations.toBool();
    return std::nullopt;
}

} // namespace

std::optional<double> AnimationDurationFactor(const QByteArray &kdeglobals)
{
    std::optional<double> factor;
    bool inGroup = false;
    for (const QByteArray &raw : kdeglobals.split('\n')) {
        const QByteArray line = raw.trimmed();
        if (line.startsWith('[')) {
            inGroup = line == "[KDE]" || line.startsWith("[KDE][$");
            continue;
        }
        const qsizetype equals = line.indexOf('=');
        if (!inGroup || equals < 0)
            continue;
        // A key may carry a mark like [$i], for "not to be changed".
        const QByteArray key = line.left(equals).split('[').constFirst().trimmed();
        if (key != "AnimationDurationFactor")
            continue;
        bool isNumber = false;
        const double value = line.mid(equals + 1).trimmed().toDouble(&isNumber);
        if (isNumber)
            factor = value;
    }
    return factor;
}

ReducedMotion::ReducedMotion(const QDBusConnection &session, const QString &kdeglobals, int limit,
                             QObject *parent)
    : QObject(parent)
    , m_bus(session)
    , m_kdeglobals(kdeglobals)
    , m_limit(limit)
{
    if (!m_bus.isConnected()) {
        readKdeglobals();
        return;
    }
    // Without a sender in the rule: naming one makes Qt ask the bus for its owner and wait for the answer.
    m_bus.connect(QString(), portalPath, settingsPortal, u"SettingChanged"_s, this,
                  SLOT(settingChanged(QDBusMessage)));
    auto *watcher =
        new QDBusServiceWatcher(portalService, m_bus, QDBusServiceWatcher::WatchForRegistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceRegistered, this, &ReducedMotion::askPortal);
    askPortal();
}

QString ReducedMotion::defaultKdeglobals()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u"/kdeglobals"_s;
}

void ReducedMotion::settingChanged(const QDBusMessage &signal)
{
    const QVariantList arguments = signal.arguments();
    const QString group = arguments.value(0).toString();
    const QString key = arguments.value(1).toString();
    // Anybody on the bus can send this signal; what it says is asked of the portal itself.
    if ((group == appearance && key == reducedMotion) || (group == gnomeInterface && key == enableAnimations))
        askPortal();
}

void ReducedMotion::askPortal()
{
    if (m_asking) {
        m_askAgain = true;
        return;
    }
    m_asking = true;
    m_askAgain = false;
    // Both groups in one call, the only one that every version of the portal has.
    QDBusMessage call =
        QDBusMessage::createMethodCall(portalService, portalPath, settingsPortal, u"ReadAll"_s);
    call << QStringList{appearance, gnomeInterface};
    CallLater(m_bus, call, m_limit, this, [this](const QDBusMessage &reply) { readPortal(reply); });
}

void ReducedMotion::readPortal(const QDBusMessage &reply)
{
    m_asking = false;
    if (reply.type() == QDBusMessage::ReplyMessage && reply.signature() == u"a{sa{sv}}"_s)
        m_portal = wish(qdbus_cast<Settings>(reply.arguments().constFirst()));
    if (!m_portal)
        readKdeglobals();
    update();
    if (m_askAgain)
        askPortal();
}

void ReducedMotion::readKdeglobals()
{
    m_file.reset();
    QFile file(m_kdeglobals);
    if (QFileInfo(file).isFile() && file.open(QIODevice::ReadOnly)) {
        if (const std::optional<double> factor = AnimationDurationFactor(file.readAll()))
            m_file = *factor <= 0;
    }
    watchKdeglobals();
    update();
}

void ReducedMotion::watchKdeglobals()
{
    if (!m_watcher) {
        m_watcher = new QFileSystemWatcher(this);
        connect(m_watcher, &QFileSystemWatcher::fileChanged, this, &ReducedMotion::readKdeglobals);
        connect(m_watcher, &QFileSystemWatcher::directoryChanged, this, &ReducedMotion::readKdeglobals);
    }
    // The file for writes in place, its folder for a file that is replaced or appears.
    for (const QString &path : {m_kdeglobals, QFileInfo(m_kdeglobals).path()}) {
        if (QFileInfo::exists(path) && !m_watcher->files().contains(path) &&
            !m_watcher->directories().contains(path))
            m_watcher->addPath(path);
    }
}

void ReducedMotion::update()
{
    const bool reduced = m_portal.value_or(m_file.value_or(false));
    if (reduced == m_reduced)
        return;
    m_reduced = reduced;
    Q_EMIT changed(reduced);
}

} // namespace tuppi
