#include "recognise/WhisperOutput.h"

#include "text/Words.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QLocale>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

// The codes that whisper.cpp takes.
constexpr QStringView knownCodes =
    u" en zh de es ru ko fr ja pt tr pl ca nl ar sv it id hi fi vi he uk el ms cs ro da hu ta no th ur hr bg "
    "lt la mi ml cy sk te fa lv bn sr az sl kn et mk br eu is hy ne mn bs kk sq sw gl mr pa si km sn yo so "
    "af oc ka be tg sd gu am yi lo uz fo ht ps tk nn mt sa lb my bo tl mg as tt haw ln ha ba jw su yue ";

bool isKnown(const QString &code)
{
    return knownCodes.contains(QString(u' ' + code + u' '));
}

// Bytes that need not be UTF-8 one by one become characters of their own for the reader of JSON, and bytes
// again for us. Control characters are only layout.
QByteArray readable(const QByteArray &file)
{
    QString text = QString::fromLatin1(file);
    for (QChar &character : text) {
        if (character < u' ')
            character = u' ';
    }
    return text.toUtf8();
}

QString decoded(const QByteArray &bytes)
{
    return QString::fromUtf8(bytes).remove(QChar::ReplacementCharacter).remove(QChar(0));
}

// "[_BEG_]", "[_TT_150]" and the like stand for times and languages, not for words.
bool isMark(const QByteArray &token)
{
    return (token.startsWith("[_") && token.endsWith(']')) ||
           (token.startsWith("<|") && token.endsWith("|>"));
}

bool isOnlyDescribed(const QString &text)
{
    static const QRegularExpression form(
        uR"(^\s*(\[[^\]]*\]|\([^)]*\)|\*[^*]*\*|（[^）]*）|【[^】]*】|[♪♫\s]*)\s*$)"_s);
    return form.match(text).hasMatch();
}

struct RawWord
{
    QByteArray bytes;
    qint64 startMs = 0;
    qint64 endMs = 0;
};

qint64 time(const QJsonValue &offsets, QStringView end, qint64 otherwise)
{
    return offsets[end].toInteger(otherwise);
}

std::vector<RawWord> rawWords(const QJsonArray &tokens, const Phrase &phrase)
{
    std::vector<RawWord> words;
    qint64 reached = phrase.startMs;
    for (const QJsonValue &token : tokens) {
        const QByteArray bytes = token[u"text"].toString().toLatin1();
        if (bytes.isEmpty() || isMark(bytes))
            continue;
        const QJsonValue offsets = token[u"offsets"];
        const qint64 start = std::clamp(time(offsets, u"from", reached), reached, phrase.endMs);
        const qint64 end = std::clamp(time(offsets, u"to", start), start, phrase.endMs);
        reached = end;
        if (words.empty() || bytes.startsWith(' '))
            words.push_back({bytes, start, end});
        else
            words.back() = {words.back().bytes + bytes, words.back().startMs, end};
    }
    return words;
}

// One word more for each blank inside: only the tokens say where words begin, and not always.
void appendWords(std::vector<Word> &words, const RawWord &raw)
{
    const QStringList texts = wordsOf(decoded(raw.bytes));
    const auto count = std::max<qint64>(1, texts.size());
    for (qsizetype i = 0; i < texts.size(); ++i)
        words.push_back({texts[i], raw.startMs + (raw.endMs - raw.startMs) * i / count,
                         raw.startMs + (raw.endMs - raw.startMs) * (i + 1) / count});
}

Phrase readPhrase(const QJsonValue &part, qint64 fromMs, qint64 soundMs)
{
    Phrase phrase;
    phrase.startMs = std::clamp(time(part[u"offsets"], u"from", fromMs), fromMs, soundMs);
    phrase.endMs = std::clamp(time(part[u"offsets"], u"to", soundMs), phrase.startMs, soundMs);
    const QByteArray text = part[u"text"].toString().toLatin1();
    if (isOnlyDescribed(decoded(text)))
        return phrase;
    for (const RawWord &raw : rawWords(part[u"tokens"].toArray(), phrase))
        appendWords(phrase.words, raw);
    if (phrase.words.empty()) // without tokens: the words share its time
        appendWords(phrase.words, {text, phrase.startMs, phrase.endMs});
    return phrase;
}

} // namespace

QString whisperLanguage(const QString &code)
{
    const QString plain = code.toLower().section(u'-', 0, 0).section(u'_', 0, 0);
    static const QHash<QString, QString> others{{u"nb"_s, u"no"_s},  {u"fil"_s, u"tl"_s}, {u"jv"_s, u"jw"_s},
                                                {u"iw"_s, u"he"_s},  {u"in"_s, u"id"_s},  {u"ji"_s, u"yi"_s},
                                                {u"cmn"_s, u"zh"_s}, {u"nob"_s, u"no"_s}};
    if (plain == u"auto" || isKnown(plain))
        return plain;
    if (others.contains(plain))
        return others[plain];
    const QString two = QLocale::languageToCode(QLocale::codeToLanguage(plain));
    return isKnown(two) ? two : others.value(two);
}

std::optional<Heard> readWhisperOutput(const QByteArray &file, qint64 soundMs)
{
    const QJsonDocument document = QJsonDocument::fromJson(readable(file));
    const QJsonValue parts = document[u"transcription"];
    if (!parts.isArray())
        return std::nullopt;
    Heard heard;
    heard.language = document[u"result"][u"language"].toString();
    qint64 reached = 0;
    for (const QJsonValue &part : parts.toArray()) {
        Phrase phrase = readPhrase(part, reached, soundMs);
        reached = phrase.endMs;
        if (!phrase.words.empty())
            heard.phrases.push_back(std::move(phrase));
    }
    return heard;
}

std::optional<int> readWhisperProgress(const QByteArray &written)
{
    const QByteArray mark = "progress =";
    for (qsizetype at = written.lastIndexOf(mark); at >= 0;
         at = at > 0 ? written.lastIndexOf(mark, at - 1) : -1) {
        const QByteArray rest = written.mid(at + mark.size());
        const qsizetype end = rest.indexOf('%');
        bool ok = false;
        const int percent = end < 0 ? -1 : rest.left(end).trimmed().toInt(&ok);
        if (ok && percent >= 0 && percent <= 100)
            return percent;
    }
    return std::nullopt;
}

} // namespace engine
