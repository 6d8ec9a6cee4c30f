#pragma once

#include "text/Transcript.h"

#include <QString>
#include <QStringList>

#include <vector>

// Sentences and tasks of a summary, and what corrections mean for them. `lines` are always those before the correction.
namespace engine {

// With another text for a line: changed is what was picked from there.
QStringList lineCorrected(QStringList texts, const std::vector<Line> &lines, size_t line, const QString &corrected);

// With another speaker for a line, or none (empty): the tasks that were picked from there get that name.
QStringList lineGiven(QStringList tasks, const std::vector<Line> &lines, size_t line, const QString &speaker);

// With another name for a speaker: where it stands for who says something; and wherever it stands, if it can only mean
// this speaker, because the engine gave it ("Speaker 1") or nobody has said it.
QStringList speakerRenamed(QStringList texts, const std::vector<Line> &lines, const QString &oldName,
                           const QString &newName);

} // namespace engine
