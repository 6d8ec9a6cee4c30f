#include "output/ViewerPage.h"

#include "core/Failure.h"
#include "output/Formats.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

QJsonObject pageSummary(const Summary &summary)
{
    QJsonArray paragraphs;
    if (!summary.sentences.isEmpty())
        paragraphs.append(u"- "_s + summary.sentences.join(u"\n- "));
    QJsonArray note;
    for (const Remark &remark : summaryNote(summary))
        note.append(QJsonObject{{u"text"_s, remark.format}, {u"values"_s, QJsonArray::fromStringList(remark.values)}});
    return {{u"note"_s, note},
            {u"paragraphs"_s, paragraphs},
            {u"tasks"_s, QJsonArray::fromStringList(summary.tasks)}};
}

// Nothing in it can end the script element that it stands in.
QByteArray embedded(QByteArray json)
{
    return json.replace('<', "\\u003c")
        .replace("\u2028", "\\u2028")
        .replace("\u2029", "\\u2029");
}

} // namespace

QJsonObject pageLine(const Line &line)
{
    QJsonArray words;
    for (const Word &word : line.words)
        words.append(double(word.startMs) / 1000);
    return {{u"start"_s, double(line.startMs) / 1000},
            {u"end"_s, double(line.endMs) / 1000},
            {u"speaker"_s, line.speaker.isEmpty() ? QJsonValue() : QJsonValue(line.speaker)},
            {u"text"_s, line.text},
            {u"words"_s, words}};
}

QByteArray viewerPage(const Job &job, const Transcript &transcript)
{
    return wholeOf([&](const TakePiece &take) { giveViewerPage(job, transcript, take); });
}

void giveViewerPage(const Job &job, const Transcript &transcript, const TakePiece &take)
{
    const QJsonObject data{
        {u"title"_s, job.title},
        {u"language"_s, job.language},
        {u"recorded_at"_s, job.recordedAt},
        {u"duration"_s, job.durationSeconds.value_or(0)},
        {u"audio"_s, QFileInfo(job.audio).fileName()},
        {u"speakers"_s, QJsonArray::fromStringList(speakersOf(transcript.lines))},
        {u"summary"_s, transcript.summary ? QJsonValue(pageSummary(*transcript.summary)) : QJsonValue()}};
    QFile page(u":/page/viewer.html"_s);
    if (!page.open(QIODevice::ReadOnly))
        throw Failure(u"The engine is not complete: the transcript page is missing. Install it again."_s);
    const QByteArray empty = page.readAll();
    // Only the one place: what was said may hold the same word.
    const QByteArray placeholder = "@TUPPI_TRANSCRIPT@";
    const qsizetype place = empty.indexOf(placeholder);
    const auto item = [&](size_t index) { return pageLine(transcript.lines[index]); };
    take(empty.left(place));
    giveJsonWithList(data, u"segments"_s, transcript.lines.size(), item, QJsonDocument::Compact,
                     [&](QByteArrayView piece) { take(embedded(piece.toByteArray())); });
    take(empty.mid(place + placeholder.size()));
}

} // namespace engine
