#pragma once

#include <QDateTime>
#include <QHash>
#include <QJsonObject>
#include <QList>
#include <QSet>
#include <QString>

#include <optional>

namespace tuppi {

/// What is remembered from one history reply to the next, so that every end of a job is announced once.
struct TransitionMemory
{
    QDateTime launchedAt;                                ///< when the application had started
    QSet<QString> announced;                             ///< ids announced as ready, or passed over as old
    std::optional<QHash<QString, QString>> lastStatus;   ///< by id; nothing before the first reply
};

/// One job that changed, or that the person is told of.
struct Transition
{
    enum class Announcement { None, Ready, Failed };

    QString id;
    QString title;
    QString before;         ///< its last status, "(new)" for a job that was not there
    QString status;
    bool changed = false;   ///< worth a line in the diagnostic log
    Announcement announcement = Announcement::None;
};

/// Compares the history's entries with what is remembered, in their order, and brings the memory up to date.
QList<Transition> FindTransitions(TransitionMemory &memory, const QList<QJsonObject> &entries);

} // namespace tuppi
