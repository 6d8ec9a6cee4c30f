#pragma once

#include "core/WorkerLock.h"
#include "media/SoundCopy.h"
#include "recognise/Recogniser.h"
#include "text/Transcript.h"
#include "worker/Decoders.h"
#include "worker/JobControl.h"
#include "worker/JobProgress.h"

#include <functional>
#include <optional>
#include <vector>

namespace engine {

// What the application compares word for word; no other text may stand around it.
inline constexpr QStringView silenceError = u"Запис містить тишу";

// Gives the recogniser for a job and a language ("auto" among them), loaded or not; it stays the giver's, and until the
// next one is asked for. Asked only where there is something to hear. Throws Failure with what is missing.
using RecogniserSource = std::function<Recogniser &(const Job &, const QString &language)>;

// Takes one job from wherever it stands to "ready". Every finished step is in the store before the next
// begins, so that a run cut off at any point is gone on with by the next.
class JobRun
{
public:
    JobRun(Database &database, WorkerLock &lock, const Job &job, RecogniserSource recognisers);

    // Throws Failure when the job has failed, JobDropped when it is no longer wanted.
    void run();

private:
    void plan();
    void recogniseMissing();
    Recogniser &chosenRecogniser(bool anythingKept) const;
    void forgetSilence(std::vector<Segment> &segments);
    void nameRecogniser(Job &job, bool anythingKept) const;
    void noteBeginning(const SoundTask &task);
    void attend(Decoders &decoders);
    void keepTask(const SoundTask &task, const Heard &heard);
    void measure(const std::vector<Segment> &segments, double recordingSeconds);
    void showProgress(qint64 done);
    std::vector<Segment> toldApart(std::vector<Segment> segments);
    void finish();
    void write(Transcript &transcript, const std::vector<Sentence> &sentences);
    void showParts(int done, int total);
    void showInPart(double share);
    void keep(Transcript &transcript);
    void enter(QStringView stage);
    QString audioPath() const;
    QString soundPath() const;

    Database &m_database;
    WorkerLock &m_lock;
    JobControl m_control;
    RecogniserSource m_recognisers;
    Recogniser *m_recogniser = nullptr;
    std::optional<SoundCopy> m_copy; // of a recording that is dear to open
    QString m_title;     // that the text model proposes; empty: none
    qint64 m_keptMs = 0; // of the speech
    WorkMeter m_work;
    JobProgress m_progress;
    int m_partsDone = 0; // of what the text model is asked in parts
    int m_parts = 1;
    QStringView m_stage = Status::transcribing; // of the step at work, which a job that goes on may be ahead of
    QElapsedTimer m_sinceShown;
};

} // namespace engine
