#include "platform/MediaLengths.h"

#include "engine/HandOver.h"
#include "platform/MediaLength.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <sys/resource.h>
#include <system_error>
#include <thread>
#include <utility>

namespace tuppi {
namespace {

using namespace std::chrono_literals;

constexpr int threadCount = 2;
constexpr auto limitPerFile = 20s;
constexpr auto moment = 200ms;

double readFile(const QString &path, const std::atomic<bool> &cancelled)
{
    return MediaLength(path, QDeadlineTimer(limitPerFile), cancelled);
}

} // namespace

/// What the threads and their owner share; lives as long as the last of them.
struct MediaLengths::Work
{
    Reader reader;
    std::atomic<bool> cancelled = false;

    std::mutex mutex;
    std::condition_variable ended;
    // Guarded by the mutex.
    MediaLengths *owner = nullptr;
    std::deque<QString> waiting;
    int threads = 0;

    /// With the mutex held.
    void deliver(const QString &path, double seconds)
    {
        if (owner)
            QMetaObject::invokeMethod(
                owner, HandOver([to = owner, path, seconds] { Q_EMIT to->measured(path, seconds); }),
                Qt::QueuedConnection);
    }
};

MediaLengths::MediaLengths(QObject *parent)
    : MediaLengths(&readFile, parent)
{
}

MediaLengths::MediaLengths(Reader reader, QObject *parent)
    : QObject(parent)
    , m_work(std::make_shared<Work>())
{
    m_work->reader = std::move(reader);
    m_work->owner = this;
}

MediaLengths::~MediaLengths()
{
    m_work->cancelled = true;
    std::unique_lock lock(m_work->mutex);
    m_work->owner = nullptr;
    m_work->waiting.clear();
    m_work->ended.wait_for(lock, moment, [this] { return m_work->threads == 0; });
}

void MediaLengths::measure(const QStringList &paths)
{
    const std::lock_guard lock(m_work->mutex);
    m_work->waiting.insert(m_work->waiting.end(), paths.begin(), paths.end());
    try {
        for (qsizetype more = paths.size(); more > 0 && m_work->threads < threadCount; --more) {
            std::thread(&MediaLengths::run, m_work).detach();
            ++m_work->threads;
        }
    } catch (const std::system_error &) {
        if (m_work->threads > 0)
            return;
        for (const QString &path : std::exchange(m_work->waiting, {}))
            m_work->deliver(path, 0); // no thread to be had: the length stays unknown
    }
}

void MediaLengths::run(const std::shared_ptr<Work> &work)
{
#ifdef Q_OS_LINUX
    ::setpriority(PRIO_PROCESS, 0, 10); // of this thread alone; what the person does goes first
#endif
    for (;;) {
        std::unique_lock lock(work->mutex);
        if (work->waiting.empty()) {
            --work->threads;
            work->ended.notify_all();
            return;
        }
        const QString path = work->waiting.front();
        work->waiting.pop_front();
        lock.unlock();

        const double seconds = work->reader(path, work->cancelled);

        lock.lock();
        work->deliver(path, seconds);
    }
}

} // namespace tuppi
