#include "viewer/ViewerMessage.h"

#include "engine/EngineCommands.h"
#include "engine/EngineErrors.h"
#include "engine/EngineReplies.h"
#include "settings/Fill.h"
#include "settings/L.h"
#include "settings/Val.h"
#include "viewer/PageScripts.h"

#include <optional>

namespace tuppi {

using namespace Qt::StringLiterals;

namespace {

Correction kindOf(const QJsonObject &body)
{
    const QString kind = body.value("kind"_L1).toString();
    if (kind == "rename"_L1)
        return Correction::Rename;
    if (kind == "split"_L1)
        return Correction::Split;
    if (kind == "join"_L1)
        return Correction::Join;
    return kind == "speaker"_L1 ? Correction::Speaker : Correction::Edit;
}

QString callbackOf(Correction kind)
{
    switch (kind) {
    case Correction::Rename:
        return u"tuppiRenamed"_s;
    case Correction::Split:
        return u"tuppiSplit"_s;
    case Correction::Join:
        return u"tuppiJoined"_s;
    case Correction::Speaker:
        return u"tuppiSpeakerSaved"_s;
    case Correction::Edit:
        break;
    }
    return u"tuppiSaved"_s;
}

std::optional<QString> textIn(const QJsonObject &body, QLatin1StringView key)
{
    const QJsonValue value = body.value(key);
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

/// JSON tells numbers from booleans, and so is neither taken for the other here.
std::optional<double> numberIn(const QJsonObject &body, QLatin1StringView key)
{
    const QJsonValue value = body.value(key);
    return value.isDouble() ? std::optional(value.toDouble()) : std::nullopt;
}

QStringList commandFor(Correction kind, const QJsonObject &body, const QString &id)
{
    const std::optional<double> line = numberIn(body, "index"_L1);
    const std::optional<QString> name = textIn(body, "name"_L1);
    if (kind == Correction::Rename) {
        const std::optional<QString> old = textIn(body, "old"_L1);
        return old && name ? command::renameSpeaker(id, *old, *name) : QStringList();
    }
    if (!line)
        return {};
    if (kind == Correction::Speaker)
        return command::setLineSpeaker(id, *line, name);
    if (kind == Correction::Join)
        return command::joinWithLineAbove(id, *line);
    if (kind == Correction::Split) {
        const std::optional<double> position = numberIn(body, "pos"_L1);
        return position ? command::splitLine(id, *line, *position) : QStringList();
    }
    const std::optional<QString> text = textIn(body, "text"_L1);
    return text ? command::editLine(id, *line, *text) : QStringList();
}

QJsonValue orNull(const QJsonValue &value)
{
    return value.isUndefined() ? QJsonValue(QJsonValue::Null) : value;
}

QString renamedText(const QJsonObject &reply)
{
    const qint64 changed = reply.value("changed"_L1).toInteger();
    return changed == 1 ? L(u"Renamed in 1 line"_s) : Fill(L(u"Renamed in %ld lines"_s), {changed});
}

QJsonArray success(Correction kind, const QJsonObject &body, const QJsonObject &reply)
{
    const QJsonValue line = body.value("index"_L1);
    switch (kind) {
    case Correction::Rename: {
        const QJsonValue speaker = Val(reply.value("speaker"_L1));
        return {true, renamedText(reply), body.value("old"_L1),
                speaker.isUndefined() ? body.value("name"_L1) : speaker};
    }
    case Correction::Speaker:
        return {line, true, L(u"Speaker saved"_s), orNull(reply.value("speaker"_L1))};
    case Correction::Join:
        return {line, true, L(u"Joined with the line above"_s), orNull(reply.value("segment"_L1))};
    case Correction::Split: {
        const QJsonArray segments = reply.value("segments"_L1).toArray();
        return {line, true, L(u"Split"_s), orNull(segments.at(0)), orNull(segments.at(1))};
    }
    case Correction::Edit:
        break;
    }
    const bool cleaned = reply.value("clean_updated"_L1).toBool();
    return {line, true, cleaned ? L(u"Saved · also fixed in the clean text"_s) : L(u"Saved"_s), body.value("text"_L1)};
}

/// `index` and `text` as they are echoed.
QJsonArray failure(Correction kind, const QString &message, const QJsonValue &index, const QJsonValue &text)
{
    switch (kind) {
    case Correction::Speaker:
        return {index, false, message, QJsonValue::Null};
    case Correction::Edit:
        return {index, false, message, text};
    default:
        return {index, false, message};
    }
}

} // namespace

QString ViewerCallId(const QList<QJsonObject> &history, const QString &callDir)
{
    QString id;
    for (const QJsonObject &entry : history) {
        if (entry.value("call_dir"_L1).isString() && entry.value("call_dir"_L1).toString() == callDir
            && entry.value("id"_L1).isString())
            id = entry.value("id"_L1).toString();
    }
    return id;
}

ViewerMessage ReadViewerMessage(const QJsonObject &body, const QString &callId)
{
    const Correction kind = kindOf(body);
    return {kind, body, callId.isEmpty() ? QStringList() : commandFor(kind, body, callId)};
}

ViewerReply Refusal(const ViewerMessage &message)
{
    const auto &[kind, body, arguments] = message;
    const QString callback = callbackOf(kind);
    if (kind == Correction::Rename) {
        const QString reason = L(u"Could not rename"_s);
        return {{callback, {false, reason, textIn(body, "old"_L1).value_or(u""_s),
                            textIn(body, "name"_L1).value_or(u""_s)}}, false, reason};
    }
    const QString reason = L(u"Could not save this change"_s);
    return {{callback, failure(kind, reason, numberIn(body, "index"_L1).value_or(0),
                               textIn(body, "text"_L1).value_or(u""_s))}, false, reason};
}

ViewerReply ReadViewerReply(const ViewerMessage &message, const RawReply &reply)
{
    const auto &[kind, body, arguments] = message;
    const QString callback = callbackOf(kind);
    const std::optional<QJsonObject> object = ReadObject(reply.out);
    if (reply.status == 0 && object)
        return {{callback, success(kind, body, *object)}, kind == Correction::Edit};
    const QString text = NotSavedText(DecodeStream(reply.err));
    // The old name twice: the page puts it back.
    if (kind == Correction::Rename)
        return {{callback, {false, text, body.value("old"_L1), body.value("old"_L1)}}, false, text};
    return {{callback, failure(kind, text, body.value("index"_L1), body.value("text"_L1))}, false, text};
}

QString WrittenText(const QJsonObject &body)
{
    const Correction kind = kindOf(body);
    const bool named = kind == Correction::Rename || kind == Correction::Speaker;
    if (!named && kind != Correction::Edit)
        return {};
    return textIn(body, named ? "name"_L1 : "text"_L1).value_or(QString());
}

QString NotSavedText(const QString &err)
{
    const QString reason = WithoutErrorPrefixes(err).trimmed();
    return reason.isEmpty() ? L(u"Not saved"_s) : L(u"Not saved: "_s) + L(reason);
}

QString AnswerScript(const ViewerAnswer &answer)
{
    return u"window.%1.apply(null, %2)"_s.arg(answer.callback, ScriptText(answer.arguments));
}

} // namespace tuppi
