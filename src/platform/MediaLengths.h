#pragma once

#include <QObject>
#include <QStringList>

#include <atomic>
#include <functional>
#include <memory>

namespace tuppi {

/// Measures media files in the background, two at a time, in the order of asking. Its threads exist only
/// while there is something to measure. Its death calls off what is left and waits for a reading only a
/// moment: one that the system holds up (a dead network drive) is left to itself.
class MediaLengths : public QObject
{
    Q_OBJECT
public:
    /// Gives the length of a file in seconds, 0 when unknown. Runs on a thread of its own, and is to give up
    /// soon after `cancelled` became true.
    using Reader = std::function<double(const QString &path, const std::atomic<bool> &cancelled)>;

    explicit MediaLengths(QObject *parent = nullptr);
    explicit MediaLengths(Reader reader, QObject *parent = nullptr);
    ~MediaLengths() override;

    /// Returns at once. Every path is answered by one measured().
    void measure(const QStringList &paths);

Q_SIGNALS:
    /// On this object's thread. `seconds` is finite, and 0 when the length is unknown.
    void measured(const QString &path, double seconds);

private:
    struct Work;

    static void run(const std::shared_ptr<Work> &work);

    std::shared_ptr<Work> m_work;
};

} // namespace tuppi
