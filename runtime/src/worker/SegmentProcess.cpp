#include "worker/SegmentProcess.h"

#include "core/Failure.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <new>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

// The first byte of the answer.
constexpr char recognised = '+';
constexpr char refused = '-';

QByteArray answerOf(Recogniser &recogniser, std::span<const int16_t> samples)
{
    try {
        return recognised + wordsToBytes(recogniser.recognise(samples));
    } catch (const Failure &failure) {
        return refused + failure.sentence().toUtf8();
    } catch (const std::bad_alloc &) {
        return refused + QByteArray("There is not enough memory to recognise speech.");
    }
}

bool sendAll(int fd, const QByteArray &bytes)
{
    for (qsizetype sent = 0; sent < bytes.size();) {
        const ssize_t count = ::write(fd, bytes.constData() + sent, size_t(bytes.size() - sent));
        if (count < 0 && errno != EINTR)
            return false;
        sent += count > 0 ? count : 0;
    }
    return true;
}

} // namespace

SegmentProcess::SegmentProcess(Recogniser &recogniser, std::span<const int16_t> samples,
                               const std::function<void()> &inChild)
{
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        throw systemFailure(u"The speech recogniser could not be started"_s, errno);
    m_answerPipe = FileDescriptor(ends[0]);
    FileDescriptor writing(ends[1]);
    const pid_t parent = ::getpid();
    m_child = ::fork();
    if (m_child < 0)
        throw systemFailure(u"The speech recogniser could not be started"_s, errno);
    if (m_child > 0)
        return;
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent)
        ::_exit(1);
    m_answerPipe.reset();
    inChild();
    ::_exit(sendAll(writing.get(), answerOf(recogniser, samples)) ? 0 : 1);
}

SegmentProcess::~SegmentProcess()
{
    if (m_child > 0) {
        ::kill(m_child, SIGKILL);
        reap();
    }
}

SegmentProcess::State SegmentProcess::reap()
{
    int status = 0;
    while (::waitpid(m_child, &status, 0) < 0 && errno == EINTR) {
    }
    m_child = -1;
    const bool whole = WIFEXITED(status) && WEXITSTATUS(status) == 0 && !m_answer.isEmpty();
    return whole ? State::Done : State::Died;
}

SegmentProcess::State SegmentProcess::wait(int limitMs)
{
    pollfd waited{m_answerPipe.get(), POLLIN, 0};
    if (::poll(&waited, 1, limitMs) <= 0)
        return State::Running;
    char block[4096];
    const ssize_t count = ::read(m_answerPipe.get(), block, sizeof block);
    if (count > 0)
        m_answer.append(block, count);
    return count == 0 ? reap() : State::Running;
}

std::vector<Word> SegmentProcess::words() const
{
    if (m_answer.startsWith(refused))
        throw Failure(QString::fromUtf8(m_answer.mid(1)));
    return wordsFromBytes(m_answer.mid(1));
}

} // namespace engine
