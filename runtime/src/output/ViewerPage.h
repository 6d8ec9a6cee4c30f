#pragma once

#include "core/Files.h"
#include "store/Job.h"
#include "text/Transcript.h"

#include <QByteArray>
#include <QJsonObject>

namespace engine {

// The transcript page (runtime/page), filled.
QByteArray viewerPage(const Job &job, const Transcript &transcript);
void giveViewerPage(const Job &job, const Transcript &transcript, const TakePiece &take);

// A line as the page takes it, in its data and in answers.
QJsonObject pageLine(const Line &line);

} // namespace engine
