#include "worker/JobRun.h"

#include "core/Cores.h"
#include "core/Failure.h"
#include "intake/CallDir.h"
#include "media/AudioReader.h"
#include "media/Segmenter.h"
#include "output/CallDirWriter.h"
#include "speakers/SpeakerLines.h"
#include "store/Answers.h"
#include "store/Segments.h"
#include "store/Transcripts.h"
#include "text/ModelWriting.h"
#include "worker/SegmentSound.h"
#include "worker/SpeakerTurns.h"
#include "worker/TextModel.h"

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

constexpr int waitMs = 100;
constexpr size_t blockSamples = 16384;
constexpr qint64 showEveryMs = 1000; // each time is a write to the disk
constexpr qint64 stepsOfPart = 1000; // so that minutes that a text model takes for one are seen to pass

std::vector<Segment> numbered(const std::vector<Span> &spans)
{
    std::vector<Segment> segments;
    for (const Span &span : spans)
        segments.push_back({int(segments.size()), span.startMs, span.endMs, std::nullopt, {}});
    return segments;
}

std::ptrdiff_t rank(QStringView status)
{
    static constexpr std::array order{Status::queued, Status::transcribing, Status::cleaning, Status::analyzing};
    return std::ranges::find(order, status) - order.begin();
}

qint64 lengthMs(const Segment &segment)
{
    return segment.endMs - segment.startMs;
}

} // namespace

JobRun::JobRun(Database &database, WorkerLock &lock, const Job &job, RecogniserSource recognisers)
    : m_database(database)
    , m_lock(lock)
    , m_control(database, job)
    , m_recognisers(std::move(recognisers))
    , m_progress(job.progress)
{
}

QString JobRun::audioPath() const
{
    return m_control.job().callDir + u'/' + m_control.job().audio;
}

// To be read once it is known where speech is.
QString JobRun::soundPath() const
{
    return m_copy ? m_copy->path() : audioPath();
}

// A job that goes on keeps the stage that it had reached, and what it showed there, while the steps before it are gone
// through once more.
void JobRun::enter(QStringView stage)
{
    m_stage = stage;
    if (rank(m_control.job().status) >= rank(stage))
        return;
    if (stage != Status::transcribing)
        m_progress = JobProgress(); // of parts now
    m_control.change([stage](Job &job) { job.status = stage.toString(); });
}

void JobRun::run()
{
    if (!m_control.job().planned)
        plan();
    recogniseMissing();
    finish();
}

// Reads the whole recording once to know its length and where speech is.
void JobRun::plan()
{
    m_recogniser = &chosenRecogniser(false); // first: without one there is no use in reading
    AudioReader reader(audioPath());
    m_control.change([&](Job &job) {
        job.status = Status::transcribing.toString();
        job.durationSeconds = reader.durationSeconds();
        if (const auto time = reader.recordedAt())
            job.recordedAt = contractTime(*time);
        nameRecogniser(job, false);
    });
    const double told = reader.durationSeconds().value_or(0);
    m_work = WorkMeter::ofUnread(told, m_control.job().speakers);
    if (reader.holdsLongTable())
        m_copy.emplace(m_database.paths().work, told);
    Segmenter segmenter;
    std::vector<int16_t> block(blockSamples);
    while (const size_t count = reader.read(block)) {
        segmenter.add(std::span(block).first(count));
        if (m_copy)
            m_copy->add(std::span(block).first(count));
        m_control.check();
        if (told > 0)
            showProgress(m_work.read(double(reader.position()) / sampleRate));
    }
    if (reader.position() == 0)
        throw Failure(u"The file is not a recording that can be read: there is no sound in it."_s);
    if (m_copy && !m_copy->isWhole())
        m_copy.reset();
    segmenter.finish();
    const std::vector<Segment> segments = numbered(segmenter.take());
    const double recordingSeconds = double(reader.position()) / sampleRate;
    measure(segments, recordingSeconds);
    m_control.change(
        [&](Job &job) {
            job.planned = true;
            job.durationSeconds = recordingSeconds;
            job.progress = segments.empty()
                               ? QString()
                               : m_progress.advance(m_work.heard(0), m_work.whole()).value_or(job.progress);
        },
        [&] { planSegments(m_database, m_control.job().seq, segments); });
}

// A job that goes on may get another recogniser, when one was installed or removed meanwhile. What the first one
// has heard of the recording, if anything, stays.
void JobRun::nameRecogniser(Job &job, bool anythingKept) const
{
    job.recogniser = m_recogniser->name();
    if (const QString contractName = m_recogniser->contractName(); !anythingKept || !contractName.isEmpty())
        job.engine = contractName;
    if (!anythingKept || job.language == u"auto")
        job.language = m_recogniser->language();
}

// One that hears a single language would make words of it from any other one that was found in what is kept.
Recogniser &JobRun::chosenRecogniser(bool anythingKept) const
{
    const Job &job = m_control.job();
    Recogniser &chosen = m_recognisers(job, job.languageChoice);
    const bool hearsIt = !anythingKept || job.language == u"auto" || chosen.language() == u"auto" ||
                         chosen.language() == job.language;
    return hearsIt ? chosen : m_recognisers(job, job.language);
}

// Where one recogniser has heard no word, another one may.
void JobRun::forgetSilence(std::vector<Segment> &segments)
{
    m_recogniser = &chosenRecogniser(false);
    if (m_recogniser->name() == m_control.job().recogniser)
        return;
    for (Segment &segment : segments)
        segment.words.reset();
    m_progress = JobProgress();
    m_control.change([](Job &job) { job.progress.clear(); },
                     [&] { planSegments(m_database, m_control.job().seq, segments); });
}

void JobRun::recogniseMissing()
{
    std::vector<Segment> segments = segmentsOf(m_database, m_control.job().seq);
    if (segments.empty())
        throw Failure(silenceError.toString());
    if (std::ranges::all_of(segments, [](const Segment &one) { return one.kept() && one.words->empty(); }))
        forgetSilence(segments);
    measure(segments, m_control.job().durationSeconds.value_or(0));
    enter(Status::transcribing);
    if (std::ranges::all_of(segments, &Segment::kept))
        return;
    const bool anythingKept = std::ranges::any_of(segments, &Segment::kept);
    if (!m_recogniser)
        m_recogniser = &chosenRecogniser(anythingKept);
    if (m_control.job().recogniser != m_recogniser->name()) {
        m_control.change([&](Job &job) { nameRecogniser(job, anythingKept); });
    }
    m_recogniser->prepare();
    Decoders decoders(
        *m_recogniser, m_recogniser->usesOneCore() ? decodersAllowed() : 1,
        [this](const SoundTask &task) { noteBeginning(task); }, [this] { m_lock.abandonInChild(); });
    SegmentSound sound(soundPath(), [this] { m_control.check(); });
    for (std::vector<Segment> &group : groupsOf(std::exchange(segments, {}), m_recogniser->longestSoundMs())) {
        std::erase_if(group, &Segment::kept);
        if (group.empty())
            continue;
        while (decoders.full()) // first, so that no more sound is held than is worked on
            attend(decoders);
        SoundTask task;
        task.pieces = joinedSound(group);
        task.samples = sound.of(task.pieces);
        if (m_control.job().language != u"auto")
            task.language = m_control.job().language;
        decoders.begin(std::move(task));
    }
    while (!decoders.idle())
        attend(decoders);
}

void JobRun::noteBeginning(const SoundTask &task)
{
    m_control.note([&] {
        for (const Piece &piece : task.pieces)
            beginSegment(m_database, m_control.job().seq, piece.segment.number);
    });
}

// What is done is kept at once, whichever of them is done first: the plan holds the order.
void JobRun::attend(Decoders &decoders)
{
    if (const std::optional<Decoders::Done> ended = decoders.wait(waitMs))
        keepTask(ended->task, ended->heard);
    m_control.check();
    showProgress(m_work.heard(m_keptMs + decoders.unfinishedMs()));
}

void JobRun::keepTask(const SoundTask &task, const Heard &heard)
{
    const std::vector<std::vector<Word>> words = wordsByPiece(task.pieces, heard);
    m_keptMs += task.speechMs();
    m_control.progress(
        [&](Job &job) {
            job.progress = m_progress.advance(m_work.heard(m_keptMs), m_work.whole()).value_or(job.progress);
            // Where nothing was said, the language is a guess.
            if (job.language == u"auto" && !heard.phrases.empty() && !heard.language.isEmpty())
                job.language = heard.language;
        },
        [&] {
            for (size_t i = 0; i < task.pieces.size(); ++i)
                keepSegment(m_database, m_control.job().seq, task.pieces[i].segment.number, words[i]);
        });
    m_sinceShown.restart();
}

void JobRun::measure(const std::vector<Segment> &segments, double recordingSeconds)
{
    qint64 speechMs = 0;
    m_keptMs = 0;
    for (const Segment &segment : segments) {
        speechMs += lengthMs(segment);
        m_keptMs += segment.kept() ? lengthMs(segment) : 0;
    }
    m_work = {recordingSeconds, speechMs, m_control.job().speakers};
}

void JobRun::showProgress(qint64 done)
{
    if (m_control.job().status != m_stage)
        return;
    if (done < m_work.whole() && m_sinceShown.isValid() && !m_sinceShown.hasExpired(showEveryMs))
        return;
    const std::optional<QString> text = m_progress.advance(done, m_work.whole());
    if (!text)
        return;
    m_control.progress([&](Job &job) { job.progress = *text; });
    m_sinceShown.restart();
}

std::vector<Segment> JobRun::toldApart(std::vector<Segment> segments)
{
    const std::vector<Turn> turns = speakerTurns(
        soundPath(), segments, m_database.paths().work, [this] { m_control.check(); },
        [this](double share) { showProgress(m_work.told(share)); });
    return cutBySpeaker(std::move(segments), turns);
}

// Of a long recording every copy of its words counts: one shape of them is given up as the next one is made.
void JobRun::finish()
{
    const QString language = m_control.job().language;
    std::vector<Segment> segments = segmentsOf(m_database, m_control.job().seq);
    if (std::ranges::all_of(segments, [](const Segment &segment) { return segment.text().isEmpty(); }))
        throw Failure(silenceError.toString());
    if (m_control.job().speakers)
        segments = toldApart(std::move(segments));
    std::vector<Sentence> sentences;
    if (m_control.job().clean || m_control.job().analyze)
        sentences = cleanSentences(segments, language);
    segments = asLines(std::move(segments), language);
    Transcript transcript;
    transcript.clean = plainText(segments);
    transcript.lines = linesFrom(std::exchange(segments, {}));
    write(transcript, std::exchange(sentences, {}));
    keep(transcript);
}

void JobRun::showParts(int done, int total)
{
    m_partsDone = done;
    m_parts = total;
    m_sinceShown.invalidate();
    showInPart(0);
}

void JobRun::showInPart(double share)
{
    if (m_control.job().status != m_stage || (m_sinceShown.isValid() && !m_sinceShown.hasExpired(showEveryMs)))
        return;
    const qint64 done = qint64(m_partsDone) * stepsOfPart + qint64(share * stepsOfPart);
    if (const std::optional<QString> text = m_progress.advance(done, qint64(m_parts) * stepsOfPart))
        m_control.progress([&](Job &job) { job.progress = *text; });
    m_sinceShown.restart();
}

// By the text model, where there is one that answers; else by rules.
void JobRun::write(Transcript &transcript, const std::vector<Sentence> &sentences)
{
    const QString language = m_control.job().language;
    TextModel model(m_database, m_control, [this](double share) { showInPart(share); });
    const auto ask = [&](const ModelQuestion &question) { return model.ask(question); };
    const auto show = [&](int done, int total) { showParts(done, total); };
    if (m_control.job().clean) {
        enter(Status::cleaning);
        transcript.clean =
            model.chosen() ? polishedText(sentences, language, ask, show) : paragraphs(sentences);
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
    } else if (model.chosen()) {
        transcript.summary->missing.prepend(gaveNothing(model.name()));
    }
}

// A job that is ready has all its files. One that dies in between writes them again.
void JobRun::keep(Transcript &transcript)
{
    Job job = m_control.job();
    if (!m_title.isEmpty() && hasFirstTitle(job.callDir, job.title))
        job.title = m_title;
    transcript.revision = 1;
    stageAllFiles(job, transcript);
    if (!publishFiles(job.callDir, transcript.revision))
        throw Failure(u"The transcript's folder is gone: “"_s + job.callDir + u"”."_s);
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
