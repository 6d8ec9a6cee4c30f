#include "worker/SegmentProcess.h"

#include "core/Failure.h"
#include "core/Files.h"
#include "store/Segments.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

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

// What the child writes: any number of progress marks, each with a byte that tells the percentage, then one
// of the others with the rest of the answer.
constexpr char inWork = '%';
constexpr char recognised = '+';
constexpr char refused = '-';

QByteArray heardToBytes(const Heard &heard)
{
    QJsonArray phrases;
    for (const Phrase &phrase : heard.phrases)
        phrases.append(QJsonArray{phrase.startMs, phrase.endMs,
                                  QJsonDocument::fromJson(wordsToBytes(phrase.words)).array()});
    return QJsonDocument(QJsonObject{{u"language"_s, heard.language}, {u"phrases"_s, phrases}})
        .toJson(QJsonDocument::Compact);
}

Heard heardFromBytes(const QByteArray &bytes)
{
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    Heard heard{{}, document[u"language"].toString()};
    for (const QJsonValue &phrase : document[u"phrases"].toArray())
        heard.phrases.push_back(
            {phrase[0].toInteger(), phrase[1].toInteger(),
             wordsFromBytes(QJsonDocument(phrase[2].toArray()).toJson(QJsonDocument::Compact))});
    return heard;
}

// Empty when the recogniser broke down.
QByteArray answerOf(Recogniser &recogniser, const Sound &sound)
{
    try {
        return recognised + heardToBytes(recogniser.recognise(sound));
    } catch (const RecogniserBroke &) {
        return {};
    } catch (const Failure &failure) {
        return refused + failure.sentence().toUtf8();
    } catch (const std::bad_alloc &) {
        return refused + QByteArray("There is not enough memory to recognise speech.");
    }
}

// The recogniser may have started programs of its own, which are in the group.
void killGroup(int)
{
    ::kill(0, SIGKILL);
}

} // namespace

SegmentProcess::SegmentProcess(Recogniser &recogniser, const Sound &sound,
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
    ::setpgid(m_child, m_child); // on both sides: neither may come too late
    if (m_child > 0)
        return;
    ::signal(SIGTERM, killGroup);
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (::getppid() != parent)
        ::_exit(1);
    m_answerPipe.reset();
    inChild();
    Sound told = sound;
    told.progress = [&](int percent) {
        if (!tryWriteAll(writing.get(), QByteArray(1, inWork) + char(percent)))
            ::_exit(1);
    };
    ::_exit(tryWriteAll(writing.get(), answerOf(recogniser, told)) ? 0 : 1);
}

SegmentProcess::~SegmentProcess()
{
    if (m_child > 0) {
        ::kill(-m_child, SIGKILL);
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
    takeProgress();
    return count == 0 ? reap() : State::Running;
}

void SegmentProcess::takeProgress()
{
    while (m_answer.size() >= 2 && m_answer.front() == inWork) {
        m_percent = m_answer[1];
        m_answer.remove(0, 2);
    }
}

Heard SegmentProcess::heard() const
{
    if (m_answer.startsWith(refused))
        throw Failure(QString::fromUtf8(m_answer.mid(1)));
    return heardFromBytes(m_answer.mid(1));
}

} // namespace engine
