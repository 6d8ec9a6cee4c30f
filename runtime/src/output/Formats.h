#pragma once

#include "core/Files.h"
#include "store/Job.h"
#include "text/Transcript.h"

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <functional>

namespace engine {

// The files of a call dir as bytes (UTF-8). Lines that were emptied stand in those for programs only.

// [00:00:03] Speaker: text, without the name where it is not known.
QByteArray transcriptFile(const std::vector<Line> &lines);

QByteArray subRipFile(const std::vector<Line> &lines); // .srt
QByteArray webVttFile(const std::vector<Line> &lines); // .vtt

// Everything that is known of the lines, for programs.
QByteArray segmentsFile(const Job &job, const Transcript &transcript);
void giveSegmentsFile(const Job &job, const Transcript &transcript, const TakePiece &take);

// The object as JSON with a list of so many items under `name`. Items are made and given one after another: as values of
// Qt's, all of a long transcript would take many times the room of their text, which is long enough.
void giveJsonWithList(QJsonObject object, const QString &name, size_t count,
                      const std::function<QJsonObject(size_t)> &item, QJsonDocument::JsonFormat format,
                      const TakePiece &take);

// Front matter, summary, tasks and full text as Markdown; of a transcript that has a summary.
QByteArray summaryFile(const Job &job, const Transcript &transcript);

// How the summary was made, for people.
QList<Remark> summaryNote(const Summary &summary);

} // namespace engine
