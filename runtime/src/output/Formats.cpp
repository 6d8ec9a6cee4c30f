#include "output/Formats.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

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

QString two(qint64 number)
{
    return u"%1"_s.arg(number, 2, 10, QChar(u'0'));
}

QString clock(qint64 ms)
{
    const qint64 seconds = ms / 1000;
    return two(seconds / 3600) + u':' + two(seconds / 60 % 60) + u':' + two(seconds % 60);
}

QString fineClock(qint64 ms, QChar point)
{
    return clock(ms) + point + u"%1"_s.arg(ms % 1000, 3, 10, QChar(u'0'));
}

std::vector<Cue> cues(const std::vector<Segment> &segments)
{
    std::vector<Cue> found;
    for (const Segment &segment : segments) {
        if (!segment.words)
            continue;
        bool open = false;
        for (const Word &word : *segment.words) {
            const bool full = open && (found.back().text.size() + word.text.size() >= longestCue ||
                                       word.endMs - found.back().startMs > longestCueMs);
            if (!open || full) {
                found.push_back({word.startMs, word.endMs, segment.speaker, word.text});
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

QString bulletList(const QStringList &items, const QString &bullet)
{
    QString list;
    for (const QString &item : items)
        list += bullet + item + u'\n';
    return list;
}

} // namespace

QByteArray transcriptFile(const std::vector<Segment> &segments)
{
    QString text;
    for (const Segment &segment : segments) {
        if (const QString line = segment.text(); !line.isEmpty())
            text += u'[' + clock(segment.startMs) + u"] "_s +
                    (segment.speaker.isEmpty() ? QString() : segment.speaker + u": "_s) + line + u'\n';
    }
    return text.toUtf8();
}

QByteArray subRipFile(const std::vector<Segment> &segments)
{
    QString text;
    int number = 0;
    for (const Cue &cue : cues(segments))
        text += u"%1\n"_s.arg(++number) + fineClock(cue.startMs, u',') + u" --> "_s +
                fineClock(cue.endMs, u',') + u'\n' + cue.text + u"\n\n"_s;
    return text.toUtf8();
}

QByteArray webVttFile(const std::vector<Segment> &segments)
{
    QString text = u"WEBVTT\n\n"_s;
    for (const Cue &cue : cues(segments))
        text += fineClock(cue.startMs, u'.') + u" --> "_s + fineClock(cue.endMs, u'.') + u'\n' +
                (cue.speaker.isEmpty() ? QString() : u"<v "_s + cue.speaker.toHtmlEscaped() + u'>') +
                cue.text.toHtmlEscaped() + u"\n\n"_s;
    return text.toUtf8();
}

QByteArray segmentsFile(const Job &job, const std::vector<Segment> &segments)
{
    QJsonArray list;
    for (const Segment &segment : segments) {
        if (segment.text().isEmpty())
            continue;
        QJsonArray words;
        for (const Word &word : *segment.words)
            words.append(QJsonObject{{u"word"_s, word.text},
                                     {u"start"_s, double(word.startMs) / 1000},
                                     {u"end"_s, double(word.endMs) / 1000}});
        list.append(QJsonObject{{u"index"_s, list.size()},
                                {u"start"_s, double(segment.startMs) / 1000},
                                {u"end"_s, double(segment.endMs) / 1000},
                                {u"speaker"_s, segment.speaker.isEmpty() ? QJsonValue() : QJsonValue(segment.speaker)},
                                {u"text"_s, segment.text()},
                                {u"words"_s, words}});
    }
    const QJsonObject file{{u"version"_s, 1},
                           {u"title"_s, job.title},
                           {u"language"_s, job.language},
                           {u"recogniser"_s, job.recogniser},
                           {u"duration_seconds"_s, job.durationSeconds.value_or(0)},
                           {u"segments"_s, list}};
    return QJsonDocument(file).toJson();
}

QByteArray summaryFile(const Job &job, const Summary &summary, const QString &fullText)
{
    const auto seconds = qint64(job.durationSeconds.value_or(0));
    QString text = u"---\ntitle: "_s + quoted(job.title) + u"\ndate: "_s + job.recordedAt +
                   u"\nduration: "_s + quoted(clock(seconds * 1000)) + u"\nlanguage: "_s + job.language +
                   u"\nrecogniser: "_s + quoted(job.recogniser) +
                   u"\nsummary: \"extracted\"\nspeakers: []\n---\n"_s;
    text += u"# "_s + job.title + u"\n\n## Summary\n\n"_s;
    text +=
        u"*No text model was used: these sentences were picked from the transcript as they were spoken.*\n\n"_s;
    text += bulletList(summary.sentences, u"- "_s);
    text += u"\n## Tasks\n\n"_s;
    text += summary.tasks.isEmpty() ? u"None were found.\n"_s : bulletList(summary.tasks, u"- [ ] "_s);
    text += u"\n## Full text\n\n"_s + fullText;
    return text.toUtf8();
}

} // namespace engine
