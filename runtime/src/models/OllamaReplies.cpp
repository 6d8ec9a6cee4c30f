#include "models/OllamaReplies.h"

#include "core/Failure.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

constexpr qsizetype longestLine = 1 << 20;
constexpr qsizetype longestReason = 200;
constexpr qsizetype longestAnswer = 200'000;

} // namespace

QString notUnderstood()
{
    return u"What answers in Ollama's place cannot be understood. Start Ollama again, or update it."_s;
}

void OllamaReply::take(QByteArrayView piece)
{
    m_rest.append(piece);
    for (qsizetype end; (end = m_rest.indexOf('\n')) >= 0; m_rest.remove(0, end + 1))
        readLine(m_rest.left(end));
    if (m_rest.size() > longestLine || kept() > longestAnswer)
        throw Failure(notUnderstood());
}

PullReply::PullReply(const QString &name, const Progress &progress)
    : m_name(name)
    , m_progress(progress)
{
}

bool PullReply::finish()
{
    readRest();
    return m_success;
}

void PullReply::readLine(const QByteArray &line)
{
    const QJsonObject object = QJsonDocument::fromJson(line).object();
    if (const QString error = object[u"error"].toString(); !error.isEmpty())
        throw Failure(pullTrouble(m_name, error));
    m_success = m_success || object[u"status"].toString() == u"success";
    if (const qint64 size = object[u"total"].toInteger(); size > 0)
        m_progress(std::clamp<qint64>(object[u"completed"].toInteger(), 0, size), size);
}

std::optional<QString> AnswerReply::finish()
{
    readRest();
    return m_done ? std::optional(m_text) : std::nullopt;
}

void AnswerReply::readLine(const QByteArray &line)
{
    const QJsonObject object = QJsonDocument::fromJson(line).object();
    m_text += object[u"message"].toObject()[u"content"].toString();
    if (object[u"done"].toBool())
        m_done = object[u"done_reason"].toString() != u"length";
}

QString pullTrouble(const QString &name, const QString &reason)
{
    const auto says = [&](QStringView words) { return reason.contains(words, Qt::CaseInsensitive); };
    if (says(u"file does not exist") || says(u"not found") || says(u"invalid model name"))
        return u"Ollama knows no model named “"_s + name + u"”. Check the name."_s;
    if (says(u"no space left") || says(u"disk quota"))
        return u"There is not enough room for “"_s + name + u"”. Make room and try again."_s;
    if (says(u"no such host") || says(u"dial tcp") || says(u"i/o timeout") || says(u"network is unreachable"))
        return u"Ollama could not load “"_s + name + u"”. Check the internet connection and try again."_s;
    if (says(u"newer version of ollama"))
        return u"“"_s + name + u"” needs a newer Ollama. Update it and try again."_s;
    return u"Ollama could not load “"_s + name + u"”: "_s + reason.simplified().left(longestReason);
}

} // namespace engine
