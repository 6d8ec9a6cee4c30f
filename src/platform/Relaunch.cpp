#include "platform/Relaunch.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>

namespace tuppi {

using namespace Qt::StringLiterals;

void RelaunchAfterQuit(const QString &program)
{
    const QString script = u"sleep 1; tries=100; "
                           "while kill -0 \"$1\" 2>/dev/null && [ $((tries -= 1)) -gt 0 ]; do sleep 0.1; done; "
                           "exec \"$0\""_s;
    const QString self = QString::number(QCoreApplication::applicationPid());
    // In a session of its own, so that it outlives this process and its terminal.
    QProcess::startDetached(u"/bin/sh"_s, {u"-c"_s, script, program, self}, QDir::homePath());
}

} // namespace tuppi
