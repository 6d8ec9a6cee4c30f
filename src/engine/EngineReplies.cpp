#include "engine/EngineReplies.h"

#include "engine/Stages.h"
#include "settings/Val.h"

#include <QCryptographicHash>
#include <QJsonDocument>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

QJsonDocument parse(const QByteArray &out)
{
    return out.isValidUtf8() ? QJsonDocument::fromJson(out) : QJsonDocument();
}

/// Two hashes of unlike seeds: that both stay the same while the bytes change does not happen by chance.
ReplyMark markOf(const QByteArray &bytes)
{
    constexpr size_t firstSeed = 0x9e3779b97f4a7c15;
    constexpr size_t secondSeed = 0xc2b2ae3d27d4eb4f;
    return {bytes.size(), qHashBits(bytes.constData(), size_t(bytes.size()), firstSeed),
            qHashBits(bytes.constData(), size_t(bytes.size()), secondSeed)};
}

QByteArray digestOf(const QList<QJsonObject> &entries)
{
    QCryptographicHash hash(QCryptographicHash::Sha1);
    for (const QJsonObject &entry : entries)
        hash.addData(QJsonDocument(entry).toJson(QJsonDocument::Compact));
    return hash.result();
}

} // namespace

bool IsActiveStage(const QString &status)
{
    return status == "queued"_L1 || status == "transcribing"_L1 || status == "analyzing"_L1 || status == "cleaning"_L1;
}

std::optional<QJsonObject> ReadObject(const QByteArray &out)
{
    const QJsonDocument document = parse(out);
    return document.isObject() ? std::optional(document.object()) : std::nullopt;
}

std::optional<QJsonArray> ReadArray(const QByteArray &out)
{
    const QJsonDocument document = parse(out);
    return document.isArray() ? std::optional(document.array()) : std::nullopt;
}

History ArrangeHistory(const QJsonArray &jobs)
{
    History history;
    QList<QJsonObject> resting;
    history.entries.reserve(jobs.size());
    for (const QJsonValue &value : jobs) {
        const QJsonObject entry = value.toObject();
        if (Val(entry.value("id"_L1)).isUndefined())
            continue;
        history.entries.append(entry);
        const QString status = entry.value("status"_L1).toString();
        if (IsActiveStage(status)) {
            history.active.append(entry);
            ++history.counts.active;
            history.counts.pausedWork |= entry.value("paused"_L1).toBool();
        } else if (!entry.value("hidden"_L1).toBool()) {
            resting.append(entry);
            history.counts.ready += status == "ready"_L1;
        }
    }
    history.listed = history.active + resting;
    history.digest = digestOf(history.listed);
    return history;
}

HistoryReply ReadHistory(const RawReply &raw, const HistoryPointer &previous)
{
    const ReplyMark mark = markOf(raw.out);
    if (previous && mark.size > 0 && previous->source == mark)
        return {raw.status, previous};
    const std::optional<QJsonArray> jobs = ReadArray(raw.out);
    if (!jobs)
        return {raw.status, nullptr};
    auto history = std::make_shared<History>(ArrangeHistory(*jobs));
    history->source = mark;
    return {raw.status, std::move(history)};
}

std::optional<ModelList> ReadModelList(const QByteArray &out)
{
    const std::optional<QJsonObject> reply = ReadObject(out);
    if (!reply)
        return std::nullopt;
    ModelList list{reply->value("custom"_L1).toArray(), reply->value("text_model"_L1).toString(), {}};
    for (const QJsonValue &name : reply->value("ollama_models"_L1).toArray())
        list.ollamaModels.append(name.toString());
    return list;
}

} // namespace tuppi
