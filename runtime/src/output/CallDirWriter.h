#pragma once

#include "store/Job.h"
#include "text/Transcript.h"

#include <QByteArray>
#include <QString>

#include <utility>
#include <vector>

namespace engine {

// Files by their path in the call dir.
using CallDirFiles = std::vector<std::pair<QString, QByteArray>>;

// Every text file of the call dir. Without a summary there is no summary file.
CallDirFiles callDirFiles(const Job &job, const Transcript &transcript);

// New texts take the place of the old ones in two steps, so that what can go wrong has gone wrong before the
// first of them moves: all are written, complete and synced, into a hidden folder of the call dir; then they
// are renamed one after another, which takes less than a millisecond and can be gone on with after a kill.
//
// stageFiles leaves nothing behind when it fails. publishFiles says whether there was anything staged for
// this revision; what it has moved is synced. discardStaged removes the hidden folders, empty or not; best
// effort. The first two throw Failure.
void stageFiles(const QString &callDir, int revision, const CallDirFiles &files);
void stageAllFiles(const Job &job, const Transcript &transcript); // those of callDirFiles, one at a time
bool publishFiles(const QString &callDir, int revision);
void discardStaged(const QString &callDir);

} // namespace engine
