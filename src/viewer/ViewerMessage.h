#pragma once

#include "engine/RunCallTimeout.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

namespace tuppi {

/// What a viewer page asks for with one message.
enum class Correction { Rename, Split, Join, Speaker, Edit };

/// One message of a viewer page, understood.
struct ViewerMessage
{
    Correction kind = Correction::Edit;
    QJsonObject body;          ///< as the page posted it
    QStringList arguments;     ///< of the engine's command; empty when the message is refused
};

/// A call of one of the page's functions.
struct ViewerAnswer
{
    QString callback;
    QJsonArray arguments;
};

/// The id of the transcript in that call dir, the last one that has it; empty when none has.
QString ViewerCallId(const QList<QJsonObject> &history, const QString &callDir);

/// Reads a message for the transcript with that id. Without an id, and where a key is missing or of the wrong
/// type, it is refused.
ViewerMessage ReadViewerMessage(const QJsonObject &body, const QString &callId);

/// What follows from a message that was refused, or from the end of its command.
struct ViewerReply
{
    ViewerAnswer answer;
    bool changesList = false;  ///< the list may show something else now
    QString failure = {};      ///< why nothing was carried out; empty after a success
};

/// For a message that runs nothing.
ViewerReply Refusal(const ViewerMessage &message);

/// May be called from any thread.
ViewerReply ReadViewerReply(const ViewerMessage &message, const RawReply &reply);

/// What the person wrote in a message, a line's text or a name; else empty.
QString WrittenText(const QJsonObject &body);

/// What became of a command that was not carried out, by its standard error.
QString NotSavedText(const QString &err);

/// The script that calls the page's function.
QString AnswerScript(const ViewerAnswer &answer);

} // namespace tuppi
