#include "app/GoneFiles.h"

#include <QFile>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>

namespace tuppi {
namespace {

/// What the thread and whoever waits for it share; lives as long as the last of them.
struct Look
{
    std::mutex mutex;
    std::condition_variable ended;
    QSet<QString> gone;
    bool isOver = false;
};

} // namespace

QSet<QString> GoneFiles(const QStringList &paths, std::chrono::milliseconds patience,
                        const std::function<bool(const QString &path)> &exists)
{
    if (paths.isEmpty())
        return {};
    const auto look = std::make_shared<Look>();
    const auto ask = [look, paths, exists] {
        for (const QString &path : paths) {
            if (exists(path))
                continue;
            const std::lock_guard lock(look->mutex);
            look->gone.insert(path);
        }
        const std::lock_guard lock(look->mutex);
        look->isOver = true;
        look->ended.notify_all();
    };
    try {
        std::thread(ask).detach(); // it may never come back
    } catch (const std::system_error &) {
        return {};
    }
    std::unique_lock lock(look->mutex);
    look->ended.wait_for(lock, patience, [&] { return look->isOver; });
    return look->gone;
}

QSet<QString> GoneFiles(const QStringList &paths)
{
    constexpr std::chrono::milliseconds patience(500);
    return GoneFiles(paths, patience, [](const QString &path) { return QFile::exists(path); });
}

} // namespace tuppi
