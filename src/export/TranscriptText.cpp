#include "export/TranscriptText.h"

#include "export/CallFile.h"
#include "settings/L.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QStringDecoder>
#include <QStringList>

namespace tuppi {

using namespace Qt::StringLiterals;

namespace {

QStringList formatsInOrderOfChoice(const QString &wanted)
{
    if (wanted == "summary"_L1)
        return {u"summary"_s, u"plain"_s, u"timestamps"_s};
    if (wanted == "plain"_L1)
        return {u"plain"_s, u"timestamps"_s};
    return {u"timestamps"_s, u"plain"_s};
}

QString fileOf(const QString &format)
{
    for (const ExportFormat &known : ExportFormats()) {
        if (known.key == format)
            return known.file;
    }
    return {};
}

/// Empty when the file cannot be read, is empty or is not UTF-8.
QString readText(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(file.readAll());
    return decoder.hasError() ? QString() : text;
}

} // namespace

const QList<ExportFormat> &ExportFormats()
{
    static const QList<ExportFormat> formats{
        {u"timestamps"_s, LText(u"With timestamps and speakers"_s), u"transcript.raw.txt"_s},
        {u"plain"_s, LText(u"Clean text"_s), u"transcript.txt"_s},
        {u"summary"_s, LText(u"Summary, tasks and full text"_s), u"call.md"_s},
    };
    return formats;
}

QString WithoutFrontMatter(const QString &text)
{
    constexpr qsizetype afterOpeningLine = 4;
    const QString closingLine = u"\n---\n"_s;
    if (!text.startsWith("---\n"_L1))
        return text;
    const qsizetype end = text.indexOf(closingLine, afterOpeningLine);
    return end < 0 ? text : text.mid(end + closingLine.size());
}

std::optional<QString> TextForDir(const QString &callDir, const QString &format)
{
    for (const QString &candidate : formatsInOrderOfChoice(format)) {
        const QString text = readText(CallFile(callDir, fileOf(candidate)));
        if (!text.isEmpty())
            return candidate == "summary"_L1 ? WithoutFrontMatter(text) : text;
    }
    return std::nullopt;
}

std::optional<QString> TitleForDir(const QList<QJsonObject> &history, const QString &callDir)
{
    for (const QJsonObject &entry : history) {
        if (entry.value("call_dir"_L1).toString() != callDir || !entry.value("call_dir"_L1).isString())
            continue;
        const QJsonValue title = entry.value("title"_L1);
        return title.isString() ? std::optional(title.toString()) : std::nullopt;
    }
    return QDir(callDir).dirName();
}

QString SafeFileName(const QString &title)
{
    static const QRegularExpression unsafe(uR"([/:\\?*"<>|])"_s);
    QString name = title;
    name.replace(unsafe, u"-"_s);
    return (name.isEmpty() ? u"Transcript"_s : name) + u".txt"_s;
}

} // namespace tuppi
