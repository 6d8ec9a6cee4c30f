#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <optional>

namespace engine {

// What anything is that answers in Ollama's place and cannot be understood, as a sentence.
QString notUnderstood();

// A reply of Ollama's that comes line by line, each an object, in pieces of any size.
class OllamaReply
{
public:
    virtual ~OllamaReply() = default;

    // Throws Failure when it is too long, and what readLine throws.
    void take(QByteArrayView piece);

protected:
    virtual void readLine(const QByteArray &line) = 0;
    virtual qsizetype kept() const { return 0; } // of what was read so far, in characters
    void readRest() { readLine(m_rest); }        // the last line may have no end

private:
    QByteArray m_rest;
};

// A pull: each line has a status, or an error.
class PullReply : public OllamaReply
{
public:
    using Progress = std::function<void(qint64 there, qint64 size)>; // bytes; 0 ≤ there ≤ size

    PullReply(const QString &name, const Progress &progress);

    // The end of it all; whether it was a good one. Throws Failure.
    bool finish();

protected:
    void readLine(const QByteArray &line) override;

private:
    QString m_name;
    Progress m_progress;
    bool m_success = false;
};

// An answer: each line has a piece of it; the last one is done.
class AnswerReply : public OllamaReply
{
public:
    // The answer; nothing when it has no end of its own.
    std::optional<QString> finish();

protected:
    void readLine(const QByteArray &line) override;
    qsizetype kept() const override { return m_text.size(); }

private:
    QString m_text;
    bool m_done = false;
};

// Why Ollama did not load a model, from its own words for what went wrong.
QString pullTrouble(const QString &name, const QString &reason);

} // namespace engine
