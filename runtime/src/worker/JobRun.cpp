#include "worker/JobRun.h"

#include "core/Failure.h"
#include "intake/CallDir.h"
#include "media/Segmenter.h"
#include "output/CallDirWriter.h"
#include "speakers/SpeakerLines.h"
#include "store/Answers.h"
#include "store/Transcripts.h"
#include "text/ModelWriting.h"
#include "worker/SegmentProcess.h"
#include "worker/TextModel.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

constexpr int waitMs = 100;
constexpr size_t blockSamples = 16384;
constexpr size_t segmentsPerSpeakerStep = 20; // telling speakers apart counts as so much more to recognise

std::vector<Segment> numbered(const std::vector<Span> &spans)
{
    std::vector<Segment> segments;
    for (const Span &span : spans)
        segments.push_back({int(segments.size()), span.startMs, span.endMs, std::nullopt, {}});
    return segments;
}

QString progressText(int kept, int total)
{
    return u"%1/%2"_s.arg(kept).arg(total);
}

} // namespace

JobRun::JobRun(Database &database, WorkerLock &lock, const Job &job, RecogniserSource recognisers)
    : m_database(database)
    , m_lock(lock)
    , m_control(database, job)
    , m_recognisers(std::move(recognisers))
{
}

QString JobRun::audioPath() const
{
    return m_control.job().callDir + u'/' + m_control.job().audio;
}

void JobRun::enter(QStringView stage)
{
    if (m_control.job().status != stage)
        m_control.change([stage](Job &job) { job.status = stage.toString(); });
}

void JobRun::run()
{
    m_recogniser = &m_recognisers(m_control.job());
    if (!m_control.job().planned)
        plan();
    recogniseMissing();
    finish();
}

// Reads the whole recording once to know its length and where speech is.
void JobRun::plan()
{
    AudioReader reader(audioPath());
    m_control.change([&](Job &job) {
        job.status = Status::transcribing.toString();
        job.durationSeconds = reader.durationSeconds();
        if (const auto time = reader.recordedAt())
            job.recordedAt = contractTime(*time);
        job.recogniser = m_recogniser->name();
        job.engine = m_recogniser->contractName();
        job.language = m_recogniser->language();
    });
    Segmenter segmenter;
    std::vector<int16_t> block(blockSamples);
    while (const size_t count = reader.read(block)) {
        segmenter.add(std::span(block).first(count));
        m_control.check();
    }
    if (reader.position() == 0)
        throw Failure(u"The file is not a recording that can be read: there is no sound in it."_s);
    segmenter.finish();
    const std::vector<Segment> segments = numbered(segmenter.take());
    m_control.change(
        [&](Job &job) {
            job.planned = true;
            job.durationSeconds = double(reader.position()) / sampleRate;
            job.progress = segments.empty() ? QString() : progressText(0, int(segments.size()) + speakerSteps(segments.size()));
        },
        [&] { planSegments(m_database, m_control.job().seq, segments); });
}

// A job that goes on may get another recogniser, when one was installed or removed meanwhile.
void JobRun::nameRecogniser()
{
    const auto name = [this](Job &job) {
        job.recogniser = m_recogniser->name();
        if (const QString contractName = m_recogniser->contractName(); !contractName.isEmpty())
            job.engine = contractName;
    };
    if (m_control.job().recogniser != m_recogniser->name())
        m_control.change(name);
}

void JobRun::recogniseMissing()
{
    const std::vector<Segment> segments = segmentsOf(m_database, m_control.job().seq);
    if (segments.empty())
        throw Failure(silenceError.toString());
    m_planned = int(segments.size());
    m_kept = int(std::ranges::count_if(segments, &Segment::kept));
    if (m_kept == m_planned)
        return;
    m_shown = std::max(m_kept, m_control.job().progress.section(u'/', 0, 0).toInt());
    enter(Status::transcribing);
    nameRecogniser();
    m_recogniser->prepare();
    AudioReader reader(audioPath());
    for (std::vector<Segment> &group : groupsOf(segments, m_recogniser->longestSoundMs())) {
        std::erase_if(group, &Segment::kept);
        if (!group.empty())
            recogniseGroup(reader, joinedSound(group));
    }
}

std::vector<int16_t> JobRun::samplesOf(AudioReader &reader, const Segment &segment, qint64 tailMs)
{
    constexpr int64_t samplesPerMs = sampleRate / 1000;
    while (reader.position() < segment.startMs * samplesPerMs) {
        const int64_t before = reader.position();
        reader.skip(std::min<int64_t>(segment.startMs * samplesPerMs - before, int64_t(blockSamples)));
        m_control.check();
        if (reader.position() == before)
            throw Failure(u"The recording has become shorter since it was taken."_s);
    }
    std::vector<int16_t> samples(size_t((segment.endMs - segment.startMs + tailMs) * samplesPerMs));
    samples.resize(reader.read(samples));
    return samples;
}

// Nothing when the child that did it has died.
std::optional<Heard> JobRun::tryRecognising(const Sound &sound, const std::vector<Piece> &pieces)
{
    m_control.note([&] {
        for (const Piece &piece : pieces)
            beginSegment(m_database, m_control.job().seq, piece.segment.number);
    });
    SegmentProcess process(*m_recogniser, sound, [this] { m_lock.abandonInChild(); });
    SegmentProcess::State state = SegmentProcess::State::Running;
    while (state == SegmentProcess::State::Running) {
        state = process.wait(waitMs);
        m_control.check();
        // All of it is done once it is kept.
        showProgress(m_kept + std::min(int(pieces.size()) * process.percent() / 100, int(pieces.size()) - 1));
    }
    if (state == SegmentProcess::State::Died)
        return std::nullopt;
    return process.heard();
}

void JobRun::showProgress(int done)
{
    if (done <= m_shown)
        return;
    m_shown = done;
    m_control.progress([this](Job &job) { job.progress = progressText(m_shown, m_planned + speakerSteps(size_t(m_planned))); });
}

void JobRun::keepGroup(const std::vector<Piece> &pieces, const Heard &heard)
{
    const std::vector<std::vector<Word>> words = wordsByPiece(pieces, heard);
    m_kept += int(pieces.size());
    m_shown = std::max(m_shown, m_kept);
    m_control.progress(
        [&](Job &job) {
            job.progress = progressText(m_shown, m_planned + speakerSteps(size_t(m_planned)));
            // Where nothing was said, the language is a guess.
            if (job.language == u"auto" && !heard.phrases.empty() && !heard.language.isEmpty())
                job.language = heard.language;
        },
        [&] {
            for (size_t i = 0; i < pieces.size(); ++i)
                keepSegment(m_database, m_control.job().seq, pieces[i].segment.number, words[i]);
        });
}

void JobRun::recogniseGroup(AudioReader &reader, const std::vector<Piece> &pieces)
{
    std::vector<int16_t> samples;
    for (const Piece &piece : pieces) {
        const std::vector<int16_t> more = samplesOf(reader, piece.segment, piece.tailMs);
        samples.insert(samples.end(), more.begin(), more.end());
    }
    Sound sound{samples};
    if (m_control.job().language != u"auto")
        sound.language = m_control.job().language;
    for (int deaths = 0; deaths < m_recogniser->mostBreakdowns(); ++deaths) {
        if (const std::optional<Heard> heard = tryRecognising(sound, pieces))
            return keepGroup(pieces, *heard);
    }
    throw Failure(u"The speech recogniser stopped again and again at second %1 of the recording."_s.arg(
        pieces.front().segment.startMs / 1000));
}

// What telling speakers apart adds to the count of segments that the progress shows.
int JobRun::speakerSteps(size_t segments) const
{
    return m_control.job().speakers ? int(segments / segmentsPerSpeakerStep) + 1 : 0;
}

// Who speaks where. Nothing of it is kept: after a kill it is found again, and is the same.
std::vector<Turn> JobRun::findTurns(const std::vector<Segment> &segments)
{
    const auto total = int(segments.size()) + speakerSteps(segments.size());
    int shown = int(segments.size());
    const auto show = [&](size_t handled) {
        const int now = int(segments.size()) + speakerSteps(segments.size()) * int(handled) / int(2 * segments.size());
        if (now > shown)
            m_control.progress([&](Job &job) { job.progress = progressText(now, total); });
        shown = std::max(shown, now);
    };
    SpeakerFinder finder([this] { m_control.check(); });
    std::vector<Turn> turns;
    for (const bool learning : {true, false}) {
        AudioReader reader(audioPath());
        for (size_t i = 0; i < segments.size(); ++i) {
            if (segments[i].text().isEmpty())
                continue;
            const std::vector<int16_t> samples = samplesOf(reader, segments[i]);
            if (learning) {
                finder.hear(samples);
            } else {
                const std::vector<Turn> found = finder.turns(segments[i].startMs, samples);
                turns.insert(turns.end(), found.begin(), found.end());
            }
            show(learning ? i + 1 : segments.size() + i + 1);
        }
        if (learning)
            finder.learn();
    }
    return turns;
}

void JobRun::finish()
{
    std::vector<Segment> segments = segmentsOf(m_database, m_control.job().seq);
    if (std::ranges::all_of(segments, [](const Segment &segment) { return segment.text().isEmpty(); }))
        throw Failure(silenceError.toString());
    if (m_control.job().speakers)
        segments = cutBySpeaker(segments, findTurns(segments));
    Transcript transcript;
    transcript.lines = linesFrom(segments);
    transcript.clean = plainText(segments);
    if (m_control.job().clean || m_control.job().analyze)
        write(transcript, segments);
    keep(transcript);
}

void JobRun::showParts(int done, int total)
{
    m_control.progress([&](Job &job) { job.progress = progressText(done, total); });
}

// By the text model, where there is one that answers; else by rules.
void JobRun::write(Transcript &transcript, const std::vector<Segment> &segments)
{
    const QString language = m_control.job().language;
    const std::vector<Sentence> sentences = cleanSentences(segments, language);
    TextModel model(m_database, m_control);
    const auto ask = [&](const ModelQuestion &question) { return model.ask(question); };
    const auto show = [&](int done, int total) { showParts(done, total); };
    if (m_control.job().clean) {
        enter(Status::cleaning);
        transcript.clean = model.chosen() ? polishedText(sentences, language, ask, show) : paragraphs(sentences);
    }
    if (!m_control.job().analyze)
        return;
    enter(Status::analyzing);
    const std::optional<WrittenSummary> written =
        model.chosen() ? writtenSummary(sentences, language, ask, show) : std::nullopt;
    transcript.summary = written ? written->summary : extractSummary(sentences, language);
    if (written) {
        transcript.summary->model = model.name();
        m_title = written->title;
    }
}

// A job that is ready has all its files. One that dies in between writes them again.
void JobRun::keep(Transcript &transcript)
{
    Job job = m_control.job();
    if (!m_title.isEmpty() && hasFirstTitle(job.callDir, job.title))
        job.title = m_title;
    transcript.revision = 1;
    stageFiles(job.callDir, transcript.revision, callDirFiles(job, transcript));
    publishFiles(job.callDir, transcript.revision);
    discardStaged(job.callDir);
    m_control.change(
        [&](Job &ready) {
            ready.title = job.title;
            ready.status = Status::ready.toString();
            ready.completedAt = contractNow();
        },
        [&] {
            keepTranscript(m_database, job.seq, transcript);
            dropAnswers(m_database, job.seq);
            noteWritten(m_database, job.seq, transcript.revision);
        });
}

} // namespace engine
