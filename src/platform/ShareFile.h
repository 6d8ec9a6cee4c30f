#pragma once

#include "export/ShareChoices.h"
#include "platform/DBusCall.h"

#include <QString>

QT_BEGIN_NAMESPACE
class QMimeData;
QT_END_NAMESPACE

namespace tuppi {

/// A file that is to be handed on, and where the desktop's dialogs about it belong.
struct SharedFile
{
    QString path;
    QString title;   ///< subject of a message
    QString parent;  ///< PortalParent() of that window
};

/// Looks what the desktop can do with a file, which takes at most about a second, and tells `then` on
/// `context`'s thread; not when `context` is gone by then.
void LookForShareOffers(const QDBusConnection &session, QObject *context, std::function<void(const ShareOffers &)> then);

/// Opens a new message with the file attached. `failed` is called when no mail program could be had.
void SendByEmail(const QDBusConnection &session, const SharedFile &file, QObject *context, std::function<void()> failed);

/// Lets the person choose a program and opens the file with it; with the usual one where nobody can ask.
/// `failed` is called when there is none.
void OpenWithProgram(const QDBusConnection &session, const SharedFile &file, QObject *context, std::function<void()> failed);

/// What a file manager pastes as a copy of this file. Owned by the caller.
QMimeData *FileMimeData(const QString &path);

} // namespace tuppi
