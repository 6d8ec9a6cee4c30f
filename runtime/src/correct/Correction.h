#pragma once

#include "store/Database.h"
#include "store/Job.h"
#include "text/Transcript.h"

#include <QString>

#include <functional>

namespace engine {

// A finished transcript, as it was read for a change.
struct Correction
{
    Job job;
    Transcript transcript;

    // What a changed line means for the texts made of it, to be called with each of them (the clean text and
    // the full text of the summary: the user may have changed one of the files by hand). The text as it was
    // by default.
    std::function<QString(const QString &)> carriedOver = [](const QString &text) { return text; };
};

// Reads the transcript, lets `change` alter it, and changes store and files: all or nothing, for any other
// program and after a kill at any moment. Changes wait for each other. Texts that the user has changed by
// hand in the files are read from there first, and kept but for the change. Throws Failure when there is no
// such transcription or it is not ready, when its files cannot be written, and whatever `change` throws; all
// with nothing changed.
void correct(Database &database, const QString &id, const std::function<void(Correction &)> &change);

// The clean text as it stands: in its file, else in the store. Throws Failure as above.
QString currentCleanText(Database &database, const QString &id);

// Goes on with the files of changes that a killed program has committed and not finished. Best effort: a
// program that is still at it and folders that cannot be written are left alone.
void finishCorrections(Database &database);

} // namespace engine
