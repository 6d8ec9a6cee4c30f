#include "platform/RevealInFileManager.h"

#include "platform/OpenPath.h"

#include <QFileInfo>
#include <QUrl>

namespace tuppi {

using namespace Qt::StringLiterals;

void RevealInFileManager(const QDBusConnection &session, const QString &path, QObject *context)
{
    constexpr int limit = 20'000; // a file manager that the call starts takes its time on a slow disk
    QDBusMessage call = QDBusMessage::createMethodCall(
        u"org.freedesktop.FileManager1"_s, u"/org/freedesktop/FileManager1"_s, u"org.freedesktop.FileManager1"_s,
        u"ShowItems"_s);
    call << QStringList{QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded)} << QString();
    CallLater(session, call, limit, context, [path](const QDBusMessage &reply) {
        if (reply.type() != QDBusMessage::ReplyMessage)
            OpenPath(QFileInfo(path).path());
    });
}

} // namespace tuppi
