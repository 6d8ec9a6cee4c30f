#include "output/Formats.h"

#include "text/Clock.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstring>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

constexpr qsizetype longestCue = 84; // two lines of subtitle
constexpr qint64 longestCueMs = 7000;

struct Cue
{
    qint64 startMs = 0;
    qint64 endMs = 0;
    QString speaker;
    QString text;
};

QString fineClock(qint64 ms, QChar point)
{
    return clock(ms) + point + u"%1"_s.arg(ms % 1000, 3, 10, QChar(u'0'));
}

std::vector<Cue> cues(const std::vector<Line> &lines)
{
    std::vector<Cue> found;
    for (const Line &line : lines) {
        bool open = false;
        for (const Word &word : line.words) {
            const bool full = open && (found.back().text.size() + word.text.size() >= longestCue ||
                                       word.endMs - found.back().startMs > longestCueMs);
            if (!open || full) {
                found.push_back({word.startMs, word.endMs, line.speaker, word.text});
                open = true;
            } else {
                found.back().text += u' ' + word.text;
                found.back().endMs = word.endMs;
            }
        }
    }
    return found;
}

// A text in double quotes, as YAML reads it.
QString quoted(const QString &text)
{
    QString escaped = text.simplified();
    escaped.replace(u'\\', u"\\\\"_s).replace(u'"', u"\\\""_s);
    return u'"' + escaped + u'"';
}

QString quotedList(const QStringList &texts)
{
    QStringList list;
    for (const QString &text : texts)
        list.append(quoted(text));
    return u'[' + list.join(u", ") + u']';
}

QString bulletList(const QStringList &items, const QString &bullet)
{
    QString list;
    for (const QString &item : items)
        list += bullet + item + u'\n';
    return list;
}

double seconds(qint64 ms)
{
    return double(ms) / 1000;
}

} // namespace

QByteArray transcriptFile(const std::vector<Line> &lines)
{
    QString text;
    for (const Line &line : lines) {
        if (line.text.isEmpty())
            continue;
        text += u'[' + clock(line.startMs) + u"] "_s;
        if (!line.speaker.isEmpty())
            text += line.speaker + u": "_s;
        text += line.text + u'\n';
    }
    return text.toUtf8();
}

QByteArray subRipFile(const std::vector<Line> &lines)
{
    QString text;
    int number = 0;
    for (const Cue &cue : cues(lines))
        text += u"%1\n"_s.arg(++number) + fineClock(cue.startMs, u',') + u" --> "_s +
                fineClock(cue.endMs, u',') + u'\n' + cue.text + u"\n\n"_s;
    return text.toUtf8();
}

QByteArray webVttFile(const std::vector<Line> &lines)
{
    QString text = u"WEBVTT\n\n"_s;
    for (const Cue &cue : cues(lines)) {
        text += fineClock(cue.startMs, u'.') + u" --> "_s + fineClock(cue.endMs, u'.') + u'\n';
        if (!cue.speaker.isEmpty())
            text += u"<v "_s + cue.speaker.toHtmlEscaped() + u'>';
        text += cue.text.toHtmlEscaped() + u"\n\n"_s;
    }
    return text.toUtf8();
}

void giveJsonWithList(QJsonObject object, const QString &name, size_t count,
                      const std::function<QJsonObject(size_t)> &item, QJsonDocument::JsonFormat format,
                      const TakePiece &take)
{
    const auto written = [&](const QJsonArray &list) {
        object[name] = list;
        return QJsonDocument(object).toJson(format);
    };
    if (count == 0)
        return take(written({}));
    const QByteArray frame = written({QJsonValue()});
    // Quotation marks are escaped wherever else they stand.
    const qsizetype place = frame.indexOf("null", frame.indexOf('"' + name.toUtf8() + "\":"));
    take(frame.left(place));
    for (size_t i = 0; i < count; ++i) {
        if (i > 0)
            take(format == QJsonDocument::Compact ? "," : ",\n        ");
        // Within a list of its own, which gives it the depth of indentation that it has here.
        const QByteArray alone =
            QJsonDocument(QJsonObject{{name, QJsonArray{item(i)}}}).toJson(format).trimmed();
        const qsizetype begin = alone.indexOf('[') + 1;
        take(alone.mid(begin, alone.lastIndexOf(']') - begin).trimmed());
    }
    take(frame.mid(place + qsizetype(std::strlen("null"))));
}

QByteArray segmentsFile(const Job &job, const Transcript &transcript)
{
    return wholeOf([&](const TakePiece &take) { giveSegmentsFile(job, transcript, take); });
}

void giveSegmentsFile(const Job &job, const Transcript &transcript, const TakePiece &take)
{
    const auto item = [&](size_t index) {
        const Line &line = transcript.lines[index];
        QJsonArray words;
        for (const Word &word : line.words)
            words.append(QJsonObject{{u"word"_s, word.text},
                                     {u"start"_s, seconds(word.startMs)},
                                     {u"end"_s, seconds(word.endMs)}});
        return QJsonObject{{u"index"_s, qint64(index)},
                           {u"start"_s, seconds(line.startMs)},
                           {u"end"_s, seconds(line.endMs)},
                           {u"speaker"_s, line.speaker.isEmpty() ? QJsonValue() : QJsonValue(line.speaker)},
                           {u"text"_s, line.text},
                           {u"words"_s, words}};
    };
    const QJsonObject file{{u"version"_s, 1},
                           {u"revision"_s, transcript.revision},
                           {u"title"_s, job.title},
                           {u"language"_s, job.language},
                           {u"recogniser"_s, job.recogniser},
                           {u"duration_seconds"_s, job.durationSeconds.value_or(0)}};
    giveJsonWithList(file, u"segments"_s, transcript.lines.size(), item, QJsonDocument::Indented, take);
}

QByteArray summaryFile(const Job &job, const Transcript &transcript)
{
    const Summary &summary = *transcript.summary;
    const auto length = qint64(job.durationSeconds.value_or(0));
    QString text = u"---\ntitle: "_s + quoted(job.title) + u"\ndate: "_s + job.recordedAt +
                   u"\nduration: "_s + quoted(clock(length * 1000)) + u"\nlanguage: "_s + quoted(job.language) +
                   u"\nrecogniser: "_s + quoted(job.recogniser) + u"\nsummary: "_s +
                   quoted(summary.model.isEmpty() ? u"extracted"_s : summary.model) + u"\nspeakers: "_s +
                   quotedList(speakersOf(transcript.lines)) + u"\n---\n"_s;
    text += u"# "_s + job.title + u"\n\n## Summary\n\n"_s;
    QStringList note;
    for (const Remark &remark : summaryNote(summary))
        note.append(filled(remark));
    text += u'*' + note.join(u' ') + u"*\n\n"_s;
    text += bulletList(summary.sentences, u"- "_s);
    text += u"\n## Tasks\n\n"_s;
    text += summary.tasks.isEmpty() ? u"None were found.\n"_s : bulletList(summary.tasks, u"- [ ] "_s);
    text += u"\n## Full text\n\n"_s + transcript.clean;
    return text.toUtf8();
}

QList<Remark> summaryNote(const Summary &summary)
{
    const Remark maker =
        summary.model.isEmpty()
            ? remark(u"No text model was used: these sentences were picked from the transcript as they were spoken."_s)
            : remark(u"Written by the text model “%@”. It may be wrong: what was said stands in the full text."_s,
                     {summary.model});
    return QList{maker} + summary.missing;
}

} // namespace engine
