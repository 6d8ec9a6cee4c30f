#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QVariant>
#include <QVariantMap>

#include <functional>
#include <future>
#include <memory>

namespace tuppi {

/// One key of the defaults store: its name, and the value that an absent key reads as.
struct DefaultKey
{
    QString name;
    QVariant fallback;
};

/// Every key that the application stores, in one place.
const QList<DefaultKey> &DefaultsTable();

/// The user's preferences and what must survive a restart: one JSON file, which keeps the values' types and
/// tells a stored no from an absent key. Written at once on every change, by replacing the file, on a thread of the
/// store's own: a disk takes its time. The writings keep their order, and the end of the store waits for them all.
///
/// A file that cannot be read as JSON is set aside under another name, never overwritten; the store then
/// starts empty, and the diagnostic log and setAside() say so.
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

    /// What the file found at the start is called now that it could not be read; empty when it could.
    QString setAside() const { return m_setAside; }

    bool contains(const QString &key) const;
    /// The stored value, else the key's default from the table, else nothing.
    QVariant value(const QString &key) const;
    QString text(const QString &key) const { return value(key).toString(); }
    bool isOn(const QString &key) const { return value(key).toBool(); }

    /// Whether values could be written. What could not holds for this run only.
    using Stored = std::shared_future<bool>;

    /// Stores values (an invalid one removes its key), all in one replacement of the file. They hold at once; the
    /// writing is under way.
    Stored set(const QVariantMap &values);
    /// Stores what `make` gives, which is called on the writing thread. It holds when it has been written; then
    /// `written` is called on this thread, unless `context` is gone.
    Stored write(std::function<QVariantMap()> make, QObject *context, std::function<void(bool stored)> written);

    /// The same as set(), but waits for the disk.
    bool setValues(const QVariantMap &values) { return set(values).get(); }
    bool setValue(const QString &key, const QVariant &value) { return setValues({{key, value}}); }
    bool remove(const QString &key) { return setValues({{key, QVariant()}}); }
    /// Waits until everything is written.
    void flush() const;
    /// Takes in what other processes have written; waits for the disk.
    void reread();

private:
    class Writer;

    void adopt() const;

    QString m_path;
    QString m_setAside;
    mutable QVariantMap m_values;
    QObject m_home; ///< where the writer calls back
    std::unique_ptr<Writer> m_writer;
};

} // namespace tuppi
