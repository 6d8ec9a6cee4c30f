#include "models/Ollama.h"

#include "core/Failure.h"
#include "models/Hub.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QStandardPaths>

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

constexpr int stallSecondsOfPull = 600;   // it is silent while it checks what it has loaded
constexpr int stallSecondsOfAnswer = 300; // it may have to load the model first
constexpr int answerLimitMs = 20 * 60 * 1000;
constexpr qsizetype fewestUnits = 4096;
constexpr qsizetype spareUnits = 1024;
constexpr int listLimitMs = 5000;

QString configuredHost()
{
    for (const char *name : {"TUPPI_OLLAMA", "OLLAMA_HOST"}) {
        if (const QString host = qEnvironmentVariable(name).trimmed(); !host.isEmpty())
            return host;
    }
    return {};
}

QString absent()
{
    if (QStandardPaths::findExecutable(u"ollama"_s).isEmpty())
        return u"Ollama is not installed."_s;
    return u"Ollama is not running. Start it and try again."_s;
}

QString troubleOf(const HttpReply &reply)
{
    if (reply.end == HttpReply::End::Unreachable)
        return absent();
    if (reply.end == HttpReply::End::TooSlow)
        return u"Ollama does not answer. Start it again and try again."_s;
    return notUnderstood();
}

// Room for the question and its answer. A word takes at most as many of the model's units as half its bytes;
// more room than it was made for it does not take.
int contextFor(const Ollama::Question &question)
{
    const qsizetype bytes = question.system.toUtf8().size() + 2 * question.text.toUtf8().size();
    return int(std::max<qsizetype>(fewestUnits, bytes / 2 + spareUnits));
}

} // namespace

std::optional<QString> ollamaAddress(const QString &host)
{
    static const QRegularExpression form(
        u"^(?<scheme>http://)?(?<host>\\[[0-9a-f:]+\\]|[^:/\\[\\]]*|::1?)(:(?<port>\\d+))?(?<path>/.*)?$"_s,
        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression here(u"^(127\\.\\d+\\.\\d+\\.\\d+|\\[::1\\])$"_s);
    const QRegularExpressionMatch match = form.match(host.trimmed());
    if (!match.hasMatch())
        return std::nullopt;
    QString name = match.captured(u"host").toLower();
    // A server that listens everywhere is told so; it listens here too.
    if (name.isEmpty() || name == u"localhost" || name == u"0.0.0.0")
        name = u"127.0.0.1"_s;
    else if (name == u"::1" || name == u"[::]" || name == u"::")
        name = u"[::1]"_s;
    if (!here.match(name).hasMatch())
        return std::nullopt;
    const QString usual = match.captured(u"scheme").isEmpty() ? u"11434"_s : u"80"_s;
    const int port = match.captured(u"port").toInt();
    QString path = match.captured(u"path");
    while (path.endsWith(u'/'))
        path.chop(1);
    return u"http://"_s + name + u':' +
           (port > 0 && port <= std::numeric_limits<quint16>::max() ? QString::number(port) : usual) + path;
}

QStringList Ollama::Models::names() const
{
    QStringList names;
    for (const Model &model : list) {
        if (!model.remote)
            names.append(model.name);
    }
    return names;
}

std::optional<Ollama::Model> Ollama::Models::find(const QString &name) const
{
    const auto found = std::ranges::find_if(list, [&](const Model &model) {
        return model.name.compare(name, Qt::CaseInsensitive) == 0 ||
               model.name.compare(name + u":latest"_s, Qt::CaseInsensitive) == 0;
    });
    return found == list.end() ? std::nullopt : std::optional(*found);
}

Ollama::Ollama(Http &http)
    : m_http(http)
    , m_base(ollamaAddress(configuredHost()).value_or(QString()).toUtf8())
{
}

HttpRequest Ollama::request(const char *path) const
{
    HttpRequest request;
    request.url = m_base + path;
    request.onLoopback = true;
    request.connectLimitMs = 1000;
    return request;
}

Ollama::Models Ollama::models(int limitMs)
{
    if (m_base.isEmpty())
        return {
            u"Ollama is set to run on another computer (OLLAMA_HOST). Only one on this computer is used."_s,
            {}};
    HttpRequest asked = request("/api/tags");
    asked.limitMs = limitMs;
    const HttpReply reply = m_http.send(asked);
    const QJsonValue list = QJsonDocument::fromJson(reply.body).object()[u"models"];
    // One without any model may say null.
    if (!reply.whole(200) || !(list.isArray() || list.isNull()))
        return {troubleOf(reply), {}};
    Models models;
    for (const QJsonValue &item : list.toArray()) {
        const bool remote =
            !item[u"remote_host"].toString().isEmpty() || !item[u"remote_model"].toString().isEmpty();
        if (const QString name = item[u"name"].toString(); !name.isEmpty())
            models.list.append({name, remote});
    }
    return models;
}

void Ollama::pull(const QString &name, const PullReply::Progress &progress)
{
    HttpRequest asked = request("/api/pull");
    asked.body =
        QJsonDocument(QJsonObject{{u"model"_s, name}, {u"stream"_s, true}}).toJson(QJsonDocument::Compact);
    asked.stallSeconds = stallSeconds(stallSecondsOfPull);
    PullReply pulled(name, progress);
    const HttpReply reply =
        m_http.send(asked, [&](const HttpReply &, QByteArrayView piece) { pulled.take(piece); });
    const bool success = pulled.finish();
    if (reply.whole(200) && success)
        return;
    if (reply.end == HttpReply::End::Unreachable || reply.end == HttpReply::End::TooSlow)
        throw Failure(troubleOf(reply));
    if (reply.status >= 300)
        throw Failure(pullTrouble(name, u"error %1"_s.arg(reply.status)));
    throw Failure(u"Ollama broke off the download of “"_s + name +
                  u"”. Try again; it goes on where it stopped."_s);
}

QString Ollama::answer(const Question &question)
{
    const Models known = models(listLimitMs);
    if (!known.trouble.isEmpty())
        throw Failure(known.trouble);
    const std::optional<Model> model = known.find(question.model);
    if (!model || model->remote)
        throw Failure(u"Ollama has no model named “"_s + question.model + u"” on this computer."_s);
    const int context = contextFor(question);
    QJsonObject body{
        {u"model"_s, model->name},
        {u"stream"_s, true},
        {u"think"_s, false},
        {u"messages"_s, QJsonArray{QJsonObject{{u"role"_s, u"system"_s}, {u"content"_s, question.system}},
                                   QJsonObject{{u"role"_s, u"user"_s}, {u"content"_s, question.text}}}},
        {u"options"_s, QJsonObject{{u"num_ctx"_s, context},
                                   {u"num_predict"_s, context / 2},
                                   {u"temperature"_s, 0},
                                   {u"seed"_s, 1}}}};
    if (question.json)
        body[u"format"_s] = u"json"_s;
    HttpRequest asked = request("/api/chat");
    asked.body = QJsonDocument(body).toJson(QJsonDocument::Compact);
    asked.stallSeconds = stallSeconds(stallSecondsOfAnswer);
    asked.limitMs = answerLimitMs;
    AnswerReply answered;
    const HttpReply reply =
        m_http.send(asked, [&](const HttpReply &, QByteArrayView piece) { answered.take(piece); });
    const std::optional<QString> answer = answered.finish();
    if (!reply.whole(200))
        throw Failure(troubleOf(reply));
    if (!answer)
        throw Failure(u"The text model's answer was cut off."_s);
    return *answer;
}

} // namespace engine
