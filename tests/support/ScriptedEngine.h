#pragma once

#include "support/Support.h"

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace tuppi::test {

/// How the scripted engine answers a call.
struct Answer
{
    QByteArray out = {};
    QByteArray err = {};
    int status = 0;
    QByteArray before = {};  ///< bash that runs before the answer is written ("$@": the call's arguments)
    QByteArray after = {};   ///< bash that runs after it, before the exit

    static Answer failure(int status, const QByteArray &err);
    /// Runs bash, with the functions of call.bash at hand.
    static Answer script(const QByteArray &bash);
    /// The same answer, not written before the test has opened the gate.
    Answer heldAt(const QByteArray &gate) const;
};

/// An engine of the test's own under a temporary home, which HOME points to while the object lives. It records
/// every argument list exactly and answers as told; without an answer a subcommand of the engine ends well and says
/// nothing. What is none can be neither called nor answered.
class ScriptedEngine
{
public:
    ScriptedEngine();
    ~ScriptedEngine();
    Q_DISABLE_COPY(ScriptedEngine)

    QString path(const QString &relative) const;  ///< in the folder that holds the home
    QString home() const { return path(QStringLiteral("home")); }
    QString stateFolder() const;
    QString enginePath() const;

    void install();
    void uninstall();

    /// Every later call of the subcommand is answered so.
    void answer(const QString &subcommand, const Answer &answer);
    /// Every later call of it with that first argument, whatever its value, is answered so.
    void answerTo(const QString &subcommand, const QString &argument, const Answer &answer);
    /// The n-th call (from 1) of the subcommand is answered so. Two that are under way at once may come in either order.
    void answerCall(const QString &subcommand, int nth, const Answer &answer);
    void answerHistory(const QByteArray &out) { answer(QStringLiteral("history"), {out}); }
    void answerStatus(const QByteArray &out) { answer(QStringLiteral("status"), {out}); }
    void openGate(const QByteArray &gate);
    /// Opens the gate; true once an answer that was held at it has been written.
    bool letPass(const QByteArray &gate);

    /// "process" puts a job into a book, "history" lists it. `firstStatus`: the status that a job begins with.
    void keepBook(const QByteArray &firstStatus);
    void setJob(int number, const QJsonObject &job);
    int jobCount() const;

    QList<QStringList> calls() const;
    QList<QStringList> calls(const QString &subcommand) const;
    int count(const QString &subcommand) const { return int(calls(subcommand).size()); }

    /// Makes an empty recording in the home folder and gives its path.
    QString recording(const QString &name) const;
    /// Changes the folder that the application watches, as the engine does after a commit.
    void touchState();

private:
    QString storeAnswer(const Answer &answer);
    void setAnswer(const QString &subcommand, const QString &calls, const Answer &answer);

    QTemporaryDir m_root;
    HomeFolder m_home;
    int m_answers = 0;
    int m_touches = 0;
};

} // namespace tuppi::test
