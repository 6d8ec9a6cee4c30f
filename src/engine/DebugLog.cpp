#include "engine/DebugLog.h"

#include "settings/Fill.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace tuppi {

using namespace Qt::StringLiterals;

QString DebugLogPath()
{
    return QDir::homePath() + u"/Library/Logs/TuppiTranscriber.log"_s;
}

void DebugLog(const QString &format, const QVariantList &arguments)
{
    DebugLogLines({Fill(format, arguments)});
}

void DebugLogLines(const QStringList &messages)
{
    if (messages.isEmpty())
        return;
    const QString date = QDateTime::currentDateTimeUtc().toString(u"yyyy-MM-dd HH:mm:ss '+0000'"_s);
    QByteArray lines;
    for (const QString &message : messages)
        lines += Fill(u"%@ %@\n"_s, {date, message}).toUtf8();
    QFile log(DebugLogPath());
    QDir().mkpath(QFileInfo(log).path());
    if (log.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered))
        log.write(lines);
}

} // namespace tuppi
