#pragma once

#include <QList>
#include <QSettings>
#include <QString>
#include <QVariant>
#include <QVariantMap>

#include <memory>

namespace tuppi {

/// One key of the defaults store: its name, the value that an absent key reads as, and what it means.
struct DefaultKey
{
    QString name;
    QVariant fallback;
    QString meaning;
};

/// Every key that the application stores, in one place.
const QList<DefaultKey> &DefaultsTable();

/// The user's preferences and what must survive a restart: one JSON file, which keeps the values' types and
/// tells a stored no from an absent key. Written at once on every change, by replacing the file.
///
/// A file that cannot be read as JSON is set aside under another name, never overwritten; the store then
/// starts empty and the diagnostic log says so.
class Defaults
{
public:
    /// Opens (or will create) the store at `path`.
    explicit Defaults(const QString &path);
    ~Defaults();
    Q_DISABLE_COPY(Defaults)

    /// The store's place for the current user.
    static QString userPath();

    QString path() const;

    bool contains(const QString &key) const;
    /// The stored value, else the key's default from the table, else nothing.
    QVariant value(const QString &key) const;
    QString text(const QString &key) const { return value(key).toString(); }
    bool isOn(const QString &key) const { return value(key).toBool(); }

    /// Stores values (an invalid one removes its key), all in one replacement of the file. False when they
    /// could not be written: they then hold for this run only.
    bool setValues(const QVariantMap &values);
    bool setValue(const QString &key, const QVariant &value) { return setValues({{key, value}}); }
    bool remove(const QString &key) { return setValues({{key, QVariant()}}); }

private:
    std::unique_ptr<QSettings> m_settings;
};

} // namespace tuppi
