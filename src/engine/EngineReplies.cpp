#include "engine/EngineReplies.h"

#include "engine/HistoryReader.h"
#include "engine/Stages.h"

#include <QJsonDocument>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

QJsonDocument parse(const QByteArray &out)
{
    return out.isValidUtf8() ? QJsonDocument::fromJson(out) : QJsonDocument();
}

} // namespace

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
    return *ReadHistory({0, QJsonDocument(jobs).toJson(QJsonDocument::Compact), {}}, nullptr).history;
}

HistoryReply ReadHistory(const RawReply &raw, const HistoryPointer &previous)
{
    HistoryReader reader(previous);
    reader.take(raw.out);
    return reader.finish(raw.status);
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
