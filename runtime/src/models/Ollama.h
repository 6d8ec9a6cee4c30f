#pragma once

#include "models/Http.h"
#include "models/OllamaReplies.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace engine {

// Ollama on this computer. Only a loopback address is ever used, past every proxy and without following a
// redirect: what is recorded must not leave the machine.
class Ollama
{
public:
    // At TUPPI_OLLAMA, else OLLAMA_HOST (both as Ollama reads the latter), else 127.0.0.1:11434.
    explicit Ollama(Http &http);

    struct Model
    {
        QString name;
        bool remote = false; // runs on Ollama's own computers
    };
    struct Models
    {
        QString trouble; // empty when it has answered; else a sentence
        QList<Model> list;

        // The names of those that run here.
        QStringList names() const;
        // By its name, with or without ":latest".
        std::optional<Model> find(const QString &name) const;
    };

    // Never throws: without an Ollama there are no models.
    Models models(int limitMs);

    // Has it download the model. Throws Failure.
    void pull(const QString &name, const PullReply::Progress &progress);

    // What the model answers. Throws Failure: also when the answer was cut off, or takes too long.
    struct Question
    {
        QString model;
        QString system;
        QString text;
        bool json = false; // the answer is to be one JSON object
    };
    QString answer(const Question &question);

private:
    HttpRequest request(const char *path) const;

    Http &m_http;
    QByteArray m_base; // empty when it is set to run elsewhere
};

// http://HOST:PORT for what OLLAMA_HOST holds; nothing when that is not on this computer.
std::optional<QString> ollamaAddress(const QString &host);

} // namespace engine
