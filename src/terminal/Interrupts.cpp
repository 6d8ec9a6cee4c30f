#include "terminal/Interrupts.h"

#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>

namespace tuppi {

Interrupts::Interrupts(QObject *parent)
    : QObject(parent)
{
    // Blocked before any thread starts, so that every thread inherits it and the descriptor sees them all.
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    m_descriptor = ::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
    m_notifier = std::make_unique<QSocketNotifier>(m_descriptor, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] {
        signalfd_siginfo info{};
        if (::read(m_descriptor, &info, sizeof info) == sizeof info)
            Q_EMIT interrupted();
    });
}

Interrupts::~Interrupts()
{
    m_notifier.reset();
    ::close(m_descriptor);
}

} // namespace tuppi
