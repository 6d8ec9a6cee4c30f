#pragma once

#include <QString>

#include <exception>

namespace engine {

// What ends a command or a job: one sentence for the person who asked, and the exit status that goes with it.
// Thrown anywhere, caught in two places only: at the edge of a command and at the edge of a job.
class Failure : public std::exception
{
public:
    explicit Failure(const QString &sentence, int exitStatus = 1);

    // Complete, without the "Error: " in front, on one line.
    const QString &sentence() const { return m_sentence; }
    int exitStatus() const { return m_exitStatus; }
    const char *what() const noexcept override { return m_text.constData(); }

private:
    QString m_sentence;
    QByteArray m_text;
    int m_exitStatus;
};

// Arguments that the command does not take; exit status 2.
Failure usageFailure(const QString &sentence);

// What the operating system said about errorNumber, as a sentence that starts with `doing`
// ("The recording could not be copied") and ends with what to do about it where we know.
Failure systemFailure(const QString &doing, int errorNumber);

} // namespace engine
