// Plays what it is told on its standard input, and says what comes of it. Quits with status 7.

#include "platform/SoundPlayer.h"

#include <QCoreApplication>
#include <QFile>
#include <QSocketNotifier>
#include <QTextStream>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

void say(const QString &line)
{
    QTextStream(stdout) << line << Qt::endl;
}

void perform(tuppi::SoundPlayer &player, const QStringList &words)
{
    const QString command = words.value(0);
    if (command == u"play"_s)
        player.play(words.value(1), words.value(2).toDouble(), words.value(3) == u"loops"_s);
    else if (command == u"volume"_s)
        player.setVolume(words.value(1), words.value(2).toDouble());
    else if (command == u"stop"_s)
        player.stop(words.value(1));
    else if (command == u"quit"_s)
        QCoreApplication::exit(7);
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    tuppi::SoundPlayer player;
    QObject::connect(&player, &tuppi::SoundPlayer::started, &player, [](const QString &name, bool loaded, bool plays) {
        say(u"started %1 %2 %3"_s.arg(name).arg(loaded).arg(plays));
    });
    QObject::connect(&player, &tuppi::SoundPlayer::lost, &player,
                     [](const QString &name) { say(u"lost "_s + name); });
    QSocketNotifier notifier(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, &player, [&player] {
        QByteArray bytes(4096, 0);
        const ssize_t count = ::read(STDIN_FILENO, bytes.data(), size_t(bytes.size()));
        if (count <= 0)
            QCoreApplication::exit(0);
        for (const QByteArray &line : bytes.first(qMax<ssize_t>(0, count)).split('\n'))
            perform(player, QString::fromUtf8(line).split(u' '));
        say(u"done"_s); // the event loop has gone on
    });
    return QCoreApplication::exec();
}
