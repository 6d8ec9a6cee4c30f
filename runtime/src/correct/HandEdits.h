#pragma once

#include "output/CallDirWriter.h"
#include "store/Job.h"
#include "text/Transcript.h"

#include <QString>

#include <functional>

namespace engine {

// What the user has changed by hand in the files that people read: Transcript.txt, the clean text, Summary.md
// (where tasks are ticked off). A correction must not undo it.
class HandEdits
{
public:
    // The transcript as the store has it, before a change.
    HandEdits(const Job &job, const Transcript &transcript);

    // The clean text as it stands in its file, or as it was kept where there is no such file. Throws Failure, as
    // the next one does, where a file cannot be read, or not as a text.
    QString cleanText() const;

    // `files` are those of the transcript after the change. Where the user has a text of their own in the
    // call dir, that one with the same change in it takes the place of ours.
    void keepIn(CallDirFiles &files, const std::function<QString(const QString &)> &carriedOver) const;

private:
    QString changedSummary(const QString &theirs, const QString &ours, const QString &after,
                           const std::function<QString(const QString &)> &carriedOver) const;

    QString m_callDir;
    QString m_clean;
    CallDirFiles m_written; // those of them that are made of the lines, as they were written last
};

} // namespace engine
