// One process of the application, as far as SingleInstance is concerned, for SingleInstanceTest.
//
// InstanceProgram MODE LIMIT FILE…: prints its role and then every signal, one line each; ends at the end of
// its input. MODE: "run"; "deaf": does not come to its event loop before a line has been read; "die": ends
// without answering when it is asked for anything.

#include "platform/SingleInstance.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QTextStream>

#include <cstdlib>
#include <unistd.h>

using namespace tuppi;
using namespace Qt::StringLiterals;

namespace {

void say(const QString &line)
{
    QTextStream(stdout) << line << Qt::endl;
}

} // namespace

int main(int argc, char *argv[])
{
    const QVariantMap tokens = LaunchTokens();
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString mode = arguments.value(1);
    QList<QUrl> urls;
    for (const QString &file : arguments.sliced(3))
        urls.append(QUrl::fromLocalFile(file));

    SingleInstance instance(QDBusConnection::sessionBus());
    QObject::connect(&instance, &SingleInstance::activated, &instance, [&](const QString &token) {
        if (mode == u"die"_s)
            std::_Exit(0);
        say(u"activated %1"_s.arg(token));
    });
    QObject::connect(&instance, &SingleInstance::openRequested, &instance,
                     [&](const QList<QUrl> &opened, const QString &token) {
                         if (mode == u"die"_s)
                             std::_Exit(0);
                         for (const QUrl &url : opened)
                             say(u"open %1 %2"_s.arg(QString::fromLatin1(url.toEncoded()), token));
                         say(u"opened %1"_s.arg(opened.size()));
                     });

    switch (instance.start(urls, tokens, arguments.value(2).toInt())) {
    case SingleInstance::Role::Primary:
        say(u"primary"_s);
        break;
    case SingleInstance::Role::HandedOver:
        say(u"handed over"_s);
        return 0;
    case SingleInstance::Role::Alone:
        say(u"alone"_s);
        break;
    }
    char byte = 0;
    if (mode == u"deaf"_s && ::read(STDIN_FILENO, &byte, 1) != 1)
        return 1;
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &application, [&byte] {
        if (::read(STDIN_FILENO, &byte, 1) <= 0)
            QCoreApplication::quit();
    });
    return QCoreApplication::exec();
}
