// Prints who speaks when in a recording: start and end in seconds, then the speaker.

#include "core/Failure.h"
#include "media/AudioReader.h"
#include "media/Segmenter.h"
#include "speakers/SpeakerFinder.h"

#include <cstdio>

using namespace engine;

namespace {

std::vector<Span> speechIn(const QString &path)
{
    AudioReader reader(path);
    Segmenter segmenter;
    std::vector<int16_t> block(16384);
    while (const size_t count = reader.read(block))
        segmenter.add(std::span(block).first(count));
    segmenter.finish();
    return segmenter.take();
}

std::vector<int16_t> samplesOf(AudioReader &reader, const Span &span)
{
    reader.skip(span.startMs * sampleRate / 1000 - reader.position());
    std::vector<int16_t> samples(size_t((span.endMs - span.startMs) * sampleRate / 1000));
    samples.resize(reader.read(samples));
    return samples;
}

void printTurns(const QString &path)
{
    const std::vector<Span> spans = speechIn(path);
    SpeakerFinder finder([] {});
    AudioReader first(path);
    for (const Span &span : spans)
        finder.hear(samplesOf(first, span));
    finder.learn();
    AudioReader second(path);
    for (const Span &span : spans) {
        for (const Turn &turn : finder.turns(span.startMs, samplesOf(second, span)))
            std::printf("%.3f %.3f %d\n", double(turn.startMs) / 1000, double(turn.endMs) / 1000, turn.speaker);
    }
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fputs("usage: bench_speakers RECORDING\n", stderr);
        return 2;
    }
    try {
        printTurns(QString::fromLocal8Bit(argv[1]));
    } catch (const Failure &failure) {
        std::fprintf(stderr, "Error: %s\n", failure.what());
        return 1;
    }
    return 0;
}
