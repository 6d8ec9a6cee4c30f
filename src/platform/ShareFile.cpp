#include "platform/ShareFile.h"

#include "engine/RunCallTimeout.h"
#include "platform/OpenPath.h"
#include "platform/PortalRequest.h"

#include <QDBusMetaType>
#include <QDBusUnixFileDescriptor>
#include <QFile>
#include <QMimeData>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

#include <fcntl.h>
#include <unistd.h>

namespace tuppi {

using namespace Qt::StringLiterals;

namespace {

constexpr int lookLimit = 1000; // milliseconds; a menu waits for it
const QString emailInterface = u"org.freedesktop.portal.Email"_s;
const QString openInterface = u"org.freedesktop.portal.OpenURI"_s;

QString program(const QString &name)
{
    return QStandardPaths::findExecutable(name);
}

/// Whether a mail program can be started without the portal. Runs a program: not for the main thread.
bool hasMailProgram()
{
    if (program(u"xdg-email"_s).isEmpty() || program(u"xdg-mime"_s).isEmpty())
        return false;
    const RawReply reply = RunAndWait(program(u"xdg-mime"_s), {u"query"_s, u"default"_s, u"x-scheme-handler/mailto"_s},
                                      {lookLimit / 1000.0, -1});
    return reply.status == 0 && !reply.out.trimmed().isEmpty();
}

QDBusUnixFileDescriptor descriptorOf(const QString &path)
{
    QDBusUnixFileDescriptor descriptor;
    const int opened = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (opened >= 0)
        descriptor.giveFileDescriptor(opened);
    return descriptor;
}

bool sendByProgram(const SharedFile &file)
{
    const QString sender = program(u"xdg-email"_s);
    return !sender.isEmpty()
        && QProcess::startDetached(sender, {u"--utf8"_s, u"--subject"_s, file.title, u"--attach"_s, file.path});
}

} // namespace

void LookForShareOffers(const QDBusConnection &session, QObject *context, std::function<void(const ShareOffers &)> then)
{
    // The one call that tells of all the portal's interfaces.
    const QDBusMessage call = PortalRequest::call(u"org.freedesktop.DBus.Introspectable"_s, u"Introspect"_s);
    CallLater(session, call, lookLimit, context, [context, then = std::move(then)](const QDBusMessage &reply) {
        const QString found = reply.type() == QDBusMessage::ReplyMessage ? reply.arguments().value(0).toString() : QString();
        ShareOffers offers;
        offers.email = found.contains(u'"' + emailInterface + u'"');
        offers.chooser = found.contains(u'"' + openInterface + u'"');
        offers.openers = !program(u"xdg-open"_s).isEmpty();
        if (offers.email) {
            then(offers);
            return;
        }
        const auto lookForProgram = [offers] {
            ShareOffers complete = offers;
            complete.email = hasMailProgram();
            return complete;
        };
        RunAside(lookForProgram, context, then);
    });
}

void SendByEmail(const QDBusConnection &session, const SharedFile &file, QObject *context, std::function<void()> failed)
{
    qDBusRegisterMetaType<QList<QDBusUnixFileDescriptor>>();
    QDBusMessage call = PortalRequest::call(emailInterface, u"ComposeEmail"_s);
    call << file.parent;
    const QList<QDBusUnixFileDescriptor> attachments{descriptorOf(file.path)};
    const QVariantMap options{{u"subject"_s, file.title}, {u"attachment_fds"_s, QVariant::fromValue(attachments)}};
    PortalRequest::send(session, call, options, context, [file, failed = std::move(failed)](bool done) {
        if (!done && !sendByProgram(file))
            failed();
    });
}

void OpenWithProgram(const QDBusConnection &session, const SharedFile &file, QObject *context, std::function<void()> failed)
{
    QDBusMessage call = PortalRequest::call(openInterface, u"OpenFile"_s);
    call << file.parent << QVariant::fromValue(descriptorOf(file.path));
    PortalRequest::send(session, call, {{u"ask"_s, true}}, context, [file, failed = std::move(failed)](bool done) {
        if (!done && !OpenPath(file.path))
            failed();
    });
}

QMimeData *FileMimeData(const QString &path)
{
    const QUrl url = QUrl::fromLocalFile(path);
    auto *data = new QMimeData;
    data->setUrls({url});
    data->setData(u"x-special/gnome-copied-files"_s, "copy\n" + url.toEncoded());
    return data;
}

} // namespace tuppi
