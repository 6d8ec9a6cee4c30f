#include "settings/Defaults.h"

#include "engine/DebugLog.h"
#include "engine/HandOver.h"
#include "settings/Val.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPointer>
#include <QSettings>
#include <QStandardPaths>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <thread>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

/// The last file set aside on this thread: the reader of a format knows of no store.
thread_local QString lastAside;

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
    if (moved)
        lastAside = aside;
}

bool readJson(QIODevice &device, QSettings::SettingsMap &map)
{
    const auto *file = qobject_cast<QFileDevice *>(&device);
    const QByteArray bytes = device.readAll();
    const bool isWhole = !file || file->error() == QFileDevice::NoError;
    if (isWhole && bytes.isEmpty())
        return true;
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    if (isWhole && document.isObject()) {
        map = document.object().toVariantMap();
        return true;
    }
    if (file)
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

QVariantMap allValues(const QSettings &settings)
{
    QVariantMap values;
    for (const QString &key : settings.allKeys())
        values.insert(key, settings.value(key));
    return values;
}

} // namespace

const QList<DefaultKey> &DefaultsTable()
{
    static const QList<DefaultKey> table{
        {u"engine"_s, u"auto"_s}, // starting speech model: a built-in model's id, or custom: and a custom one's
        {u"language"_s, u"en"_s}, // starting language code of a transcription, or auto
        {u"speakers"_s, true}, // tell speakers apart
        {u"quickMode"_s, false}, // text only: skip summary, tasks and polishing
        {u"notify"_s, true}, // post a notification when a transcript is ready
        {u"sounds"_s, true}, // purr while working, mew when done
        {u"txtFormat"_s, u"timestamps"_s}, // last chosen export format
        {u"saveFolder"_s, u""_s}, // folder of the last saved text; empty for Documents
        {u"waitingQueue"_s, QVariantList()}, // files not yet handed to the engine
        {u"startInFlight"_s, QVariant()}, // the file being handed to the engine, and the jobs known before it
        {u"windowFrame"_s, QVariant()}, // place and size of the main window, as the toolkit writes them
        {u"TranscriberViewer"_s, QVariant()}, // place and size of the last viewer window, as the toolkit writes them
        {u"TranscriberText"_s, QVariant()}, // place and size of the last text window, as the toolkit writes them
        {u"AppleLanguages"_s, QVariant()}, // chosen interface language; absent means automatic
    };
    return table;
}

/// The thread that writes. It is started by the first writing and ends with the store, after the last one.
class Defaults::Writer
{
public:
    using Done = std::function<void(bool stored)>;

    explicit Writer(const QString &path)
        : m_path(path)
    {
    }
    ~Writer()
    {
        {
            const std::lock_guard lock(m_mutex);
            m_ends = true;
        }
        m_changed.notify_all();
        if (m_thread.joinable())
            m_thread.join();
    }
    Q_DISABLE_COPY(Writer)

    /// `done` is called on the writing thread.
    Stored add(std::function<QVariantMap()> make, Done done)
    {
        const std::lock_guard lock(m_mutex);
        Writing &writing = m_writings.emplace_back(std::move(make), std::move(done));
        if (!m_thread.joinable())
            m_thread = std::thread([this] { run(); });
        m_changed.notify_all();
        return writing.stored.get_future().share();
    }
    void flush()
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_writings.empty(); });
    }
    /// All values as the file has them now, once after everything was written.
    std::optional<QVariantMap> written()
    {
        const std::lock_guard lock(m_mutex);
        return m_writings.empty() ? std::exchange(m_written, std::nullopt) : std::nullopt;
    }

private:
    struct Writing
    {
        Writing(std::function<QVariantMap()> what, Done told)
            : make(std::move(what))
            , done(std::move(told))
        {
        }
        std::function<QVariantMap()> make;
        Done done;
        std::promise<bool> stored;
    };

    void run()
    {
        std::unique_lock lock(m_mutex);
        for (;;) {
            m_changed.wait(lock, [this] { return m_ends || !m_writings.empty(); });
            if (m_writings.empty())
                return;
            Writing &writing = m_writings.front(); // stays where it is while others are added
            lock.unlock();
            const bool stored = store(writing.make());
            const QVariantMap all = allValues(*m_settings);
            lock.lock();
            m_written = all;
            writing.stored.set_value(stored);
            if (writing.done)
                writing.done(stored);
            m_writings.pop_front();
            m_changed.notify_all();
        }
    }
    bool store(const QVariantMap &values)
    {
        // An error sticks to the object that met it; the unwritten values live on in the shared file cache.
        if (!m_settings || m_settings->status() != QSettings::NoError)
            m_settings = std::make_unique<QSettings>(m_path, jsonFormat());
        for (auto entry = values.begin(); entry != values.end(); ++entry) {
            if (entry.value().isValid())
                m_settings->setValue(entry.key(), entry.value());
            else
                m_settings->remove(entry.key());
        }
        m_settings->sync();
        return m_settings->status() == QSettings::NoError;
    }

    const QString m_path;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Writing> m_writings;
    std::optional<QVariantMap> m_written;
    bool m_ends = false;
    std::unique_ptr<QSettings> m_settings; ///< the writing thread's own
    std::thread m_thread;
};

Defaults::Defaults(const QString &path)
    : m_path(path)
    , m_writer(std::make_unique<Writer>(path))
{
    QDir().mkpath(QFileInfo(path).path());
    lastAside.clear();
    m_values = allValues(QSettings(path, jsonFormat()));
    m_setAside = lastAside;
}

Defaults::~Defaults() = default;

QString Defaults::userPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + u"/tuppi-transcriber/settings.json"_s;
}

QString Defaults::path() const
{
    return m_path;
}

bool Defaults::contains(const QString &key) const
{
    adopt();
    return Val(m_values.value(key)).isValid();
}

QVariant Defaults::value(const QString &key) const
{
    adopt();
    const QVariant stored = Val(m_values.value(key));
    if (stored.isValid())
        return stored;
    for (const DefaultKey &known : DefaultsTable()) {
        if (known.name == key)
            return known.fallback;
    }
    return {};
}

/// What other processes have written meanwhile is seen after a writing of ours.
void Defaults::adopt() const
{
    if (const std::optional<QVariantMap> written = m_writer->written())
        m_values = *written;
}

Defaults::Stored Defaults::set(const QVariantMap &values)
{
    adopt();
    for (auto entry = values.begin(); entry != values.end(); ++entry)
        m_values.insert(entry.key(), entry.value());
    return m_writer->add([values] { return values; }, {});
}

Defaults::Stored Defaults::write(std::function<QVariantMap()> make, QObject *context,
                                 std::function<void(bool stored)> written)
{
    auto done = [this, written = std::move(written), guard = QPointer(context)](bool stored) {
        const auto tell = [written, guard, stored] {
            if (guard)
                written(stored);
        };
        QMetaObject::invokeMethod(&m_home, HandOver(tell), Qt::QueuedConnection);
    };
    return m_writer->add(std::move(make), std::move(done));
}

void Defaults::flush() const
{
    m_writer->flush();
}

void Defaults::reread()
{
    flush();
    adopt(); // so that nothing older is adopted later
    m_values = allValues(QSettings(m_path, jsonFormat()));
}

} // namespace tuppi
