#pragma once

#include "store/Job.h"
#include "store/Segments.h"
#include "text/Summary.h"

#include <QByteArray>

namespace engine {

// The files of a call dir as bytes (UTF-8). Segments in which nothing was said are left out of all of them.

// [00:00:03] text, one segment a line.
QByteArray transcriptFile(const std::vector<Segment> &segments);

QByteArray subRipFile(const std::vector<Segment> &segments); // .srt
QByteArray webVttFile(const std::vector<Segment> &segments); // .vtt

// Everything that is known of the segments, for programs.
QByteArray segmentsFile(const Job &job, const std::vector<Segment> &segments);

// Front matter, summary, tasks and full text as Markdown.
QByteArray summaryFile(const Job &job, const Summary &summary, const QString &fullText);

} // namespace engine
