#include "worker/Decoders.h"

#include "core/Failure.h"

#include <poll.h>

using namespace Qt::StringLiterals;

namespace engine {

qint64 SoundTask::speechMs() const
{
    qint64 sum = 0;
    for (const Piece &piece : pieces)
        sum += piece.segment.endMs - piece.segment.startMs;
    return sum;
}

Decoders::Decoders(Recogniser &recogniser, int most, std::function<void(const SoundTask &)> beginning,
                   std::function<void()> inChild)
    : m_recogniser(recogniser)
    , m_most(most)
    , m_beginning(std::move(beginning))
    , m_inChild(std::move(inChild))
{
}

void Decoders::begin(SoundTask task)
{
    m_running.push_back({std::move(task), nullptr, 0});
    launch(m_running.back());
}

void Decoders::launch(Running &running)
{
    m_beginning(running.task);
    const Sound sound{running.task.samples, running.task.language};
    running.process = std::make_unique<SegmentProcess>(m_recogniser, sound, m_inChild);
}

void Decoders::beginAgain(Running &running)
{
    if (++running.deaths >= m_recogniser.mostBreakdowns())
        throw Failure(u"The speech recogniser stopped again and again at second %1 of the recording."_s.arg(
            running.task.pieces.front().segment.startMs / 1000));
    launch(running);
}

std::optional<Decoders::Done> Decoders::wait(int limitMs)
{
    std::vector<pollfd> waited;
    for (const Running &running : m_running)
        waited.push_back({running.process->descriptor(), POLLIN, 0});
    if (::poll(waited.data(), waited.size(), limitMs) <= 0)
        return std::nullopt;
    for (auto running = m_running.begin(); running != m_running.end(); ++running) {
        const SegmentProcess::State state = running->process->wait(0);
        if (state == SegmentProcess::State::Died)
            beginAgain(*running);
        if (state == SegmentProcess::State::Done) {
            Done done{std::move(running->task), running->process->heard()};
            m_running.erase(running);
            return done;
        }
    }
    return std::nullopt;
}

qint64 Decoders::unfinishedMs() const
{
    qint64 sum = 0;
    for (const Running &running : m_running)
        sum += running.task.speechMs() * running.process->percent() / 100;
    return sum;
}

} // namespace engine
