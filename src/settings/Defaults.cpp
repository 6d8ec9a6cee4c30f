#include "settings/Defaults.h"

#include "engine/DebugLog.h"
#include "settings/Val.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

/// Moves a file that holds no JSON out of the way of the next write.
void setAside(const QString &path)
{
    const QString stamp = QDateTime::currentDateTimeUtc().toString(u"yyyyMMdd-HHmmss"_s);
    QString aside = path + u".garbled-"_s + stamp;
    for (int copy = 2; QFile::exists(aside); ++copy)
        aside = u"%1.garbled-%2-%3"_s.arg(path, stamp).arg(copy);
    const bool moved = QFile::rename(path, aside);
    DebugLog(moved ? u"settings %@ could not be read; set aside as %@, starting with defaults"_s
                   : u"settings %@ could not be read and could not be set aside as %@"_s,
             {path, aside});
}

bool readJson(QIODevice &device, QSettings::SettingsMap &map)
{
    const QByteArray bytes = device.readAll();
    if (bytes.isEmpty())
        return true;
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    if (document.isObject()) {
        map = document.object().toVariantMap();
        return true;
    }
    if (const auto *file = qobject_cast<QFileDevice *>(&device))
        setAside(file->fileName());
    return true;
}

bool writeJson(QIODevice &device, const QSettings::SettingsMap &map)
{
    const QByteArray bytes = QJsonDocument(QJsonObject::fromVariantMap(map)).toJson();
    if (device.write(bytes) != bytes.size())
        return false;
    // On a full disk the last buffer may be written in part, which closing the file would take for success.
    auto *file = qobject_cast<QFileDevice *>(&device);
    return !file || file->flush();
}

QSettings::Format jsonFormat()
{
    static const QSettings::Format format = QSettings::registerFormat(u"json"_s, readJson, writeJson);
    return format;
}

} // namespace

const QList<DefaultKey> &DefaultsTable()
{
    static const QList<DefaultKey> table{
        {u"engine"_s, u"auto"_s, u"starting speech model: a built-in model's id, or custom: and a custom one's"_s},
        {u"language"_s, u"en"_s, u"starting language code of a transcription, or auto"_s},
        {u"speakers"_s, true, u"tell speakers apart"_s},
        {u"quickMode"_s, false, u"text only: skip summary, tasks and polishing"_s},
        {u"notify"_s, true, u"post a notification when a transcript is ready"_s},
        {u"sounds"_s, true, u"purr while working, mew when done"_s},
        {u"txtFormat"_s, u"timestamps"_s, u"last chosen export format"_s},
        {u"saveFolder"_s, u""_s, u"folder of the last saved text; empty for Documents"_s},
        {u"waitingQueue"_s, QVariantList(), u"files not yet handed to the engine"_s},
        {u"startInFlight"_s, QVariant(), u"the file being handed to the engine, and the jobs known before it"_s},
        {u"windowFrame"_s, QVariant(), u"place and size of the main window, as the toolkit writes them"_s},
        {u"TranscriberViewer"_s, QVariant(), u"place and size of the last viewer window, as the toolkit writes them"_s},
        {u"TranscriberText"_s, QVariant(), u"place and size of the last text window, as the toolkit writes them"_s},
        {u"AppleLanguages"_s, QVariant(), u"chosen interface language; absent means automatic"_s},
    };
    return table;
}

Defaults::Defaults(const QString &path)
{
    QDir().mkpath(QFileInfo(path).path());
    m_settings = std::make_unique<QSettings>(path, jsonFormat());
}

Defaults::~Defaults() = default;

QString Defaults::userPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + u"/tuppi-transcriber/settings.json"_s;
}

QString Defaults::path() const
{
    return m_settings->fileName();
}

bool Defaults::contains(const QString &key) const
{
    return Val(m_settings->value(key)).isValid();
}

QVariant Defaults::value(const QString &key) const
{
    const QVariant stored = Val(m_settings->value(key));
    if (stored.isValid())
        return stored;
    for (const DefaultKey &known : DefaultsTable()) {
        if (known.name == key)
            return known.fallback;
    }
    return {};
}

bool Defaults::setValues(const QVariantMap &values)
{
    // An error sticks to the object that met it; the unwritten values live on in the shared file cache.
    if (m_settings->status() != QSettings::NoError)
        m_settings = std::make_unique<QSettings>(path(), jsonFormat());
    for (auto entry = values.begin(); entry != values.end(); ++entry) {
        if (entry.value().isValid())
            m_settings->setValue(entry.key(), entry.value());
        else
            m_settings->remove(entry.key());
    }
    m_settings->sync();
    return m_settings->status() == QSettings::NoError;
}

} // namespace tuppi
