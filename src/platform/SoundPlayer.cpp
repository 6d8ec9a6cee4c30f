#include "platform/SoundPlayer.h"

#include "engine/HandOver.h"
#include "platform/Module.h"
#include "platform/SoundModule.h"

#include <QThread>

#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <unistd.h>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

constexpr int momentMilliseconds = 200;

std::unique_ptr<SoundOutput> loadOutput()
{
    using Make = decltype(&tuppiSoundOutput);
    const auto make = reinterpret_cast<Make>(ResolveInModule(u"tuppi-sounds"_s, "tuppiSoundOutput"));
    return std::unique_ptr<SoundOutput>(make ? make() : nullptr);
}

/// A thread that a dead sound server holds up lives until the process ends. What the libraries would destroy
/// at the end of the process is what that thread stands in: some of it waits for the thread, for ever.
void endWithoutCleaningUp()
{
    static std::once_flag once;
    std::call_once(once, [] {
        ::on_exit(
            [](int status, void *) {
                std::fflush(nullptr);
                ::_exit(status);
            },
            nullptr);
    });
}

} // namespace

/// Lives on the player's thread.
class SoundPlayer::Worker : public QObject
{
public:
    Worker(SoundPlayer *player, Factory factory)
        : m_player(player)
        , m_factory(std::move(factory))
    {
    }

    ~Worker() override
    {
        TakeOver(thread());
        m_output.reset();
        GiveOver(thread());
    }

    /// The player dies; it is not told anything any more.
    void forgetPlayer()
    {
        const std::lock_guard lock(m_mutex);
        m_player = nullptr;
    }

    void play(const QString &name, double volume, bool loops)
    {
        const SoundOutput::Start start = output() ? output()->play(name, volume, loops) : SoundOutput::Start();
        tell([=](SoundPlayer &player) { Q_EMIT player.started(name, start.loaded, start.plays); });
    }

    SoundOutput *output()
    {
        if (m_factory) {
            m_output = std::exchange(m_factory, nullptr)();
            if (m_output)
                m_output->lost = [this](const QString &name) {
                    tell([name](SoundPlayer &player) { Q_EMIT player.lost(name); });
                };
        }
        return m_output.get();
    }

private:
    void tell(std::function<void(SoundPlayer &)> news)
    {
        const std::lock_guard lock(m_mutex);
        if (m_player)
            QMetaObject::invokeMethod(
                m_player, HandOver([to = m_player, news = std::move(news)] { news(*to); }), Qt::QueuedConnection);
    }

    std::mutex m_mutex;
    SoundPlayer *m_player;
    Factory m_factory;
    std::unique_ptr<SoundOutput> m_output;
};

SoundPlayer::SoundPlayer(QObject *parent)
    : SoundPlayer(&loadOutput, parent)
{
}

SoundPlayer::SoundPlayer(Factory factory, QObject *parent)
    : QObject(parent)
    , m_thread(new QThread)
    , m_worker(new Worker(this, std::move(factory)))
{
    m_thread->setObjectName(u"sounds"_s);
    m_worker->moveToThread(m_thread);
    connect(m_thread, &QThread::finished, m_worker, &QObject::deleteLater);
    m_thread->start();
}

SoundPlayer::~SoundPlayer()
{
    m_worker->forgetPlayer();
    GiveOver(m_thread);
    m_thread->quit();
    if (m_thread->wait(momentMilliseconds)) {
        TakeOver(m_thread);
        delete m_thread;
    } else {
        endWithoutCleaningUp();
    }
}

void SoundPlayer::post(std::function<void(Worker &)> call)
{
    QMetaObject::invokeMethod(
        m_worker, HandOver([worker = m_worker, call = std::move(call)] { call(*worker); }), Qt::QueuedConnection);
}

void SoundPlayer::play(const QString &name, double volume, bool loops)
{
    post([=](Worker &worker) { worker.play(name, volume, loops); });
}

void SoundPlayer::setVolume(const QString &name, double volume)
{
    post([=](Worker &worker) {
        if (SoundOutput *output = worker.output())
            output->setVolume(name, volume);
    });
}

void SoundPlayer::stop(const QString &name)
{
    post([=](Worker &worker) {
        if (SoundOutput *output = worker.output())
            output->stop(name);
    });
}

} // namespace tuppi
