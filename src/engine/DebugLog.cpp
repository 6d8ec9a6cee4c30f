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
    const QString date = QDateTime::currentDateTimeUtc().toString(u"yyyy-MM-dd HH:mm:ss '+0000'"_s);
    const QString line = Fill(u"%@ %@\n"_s, {date, Fill(format, arguments)});
    QFile log(DebugLogPath());
    QDir().mkpath(QFileInfo(log).path());
    if (log.open(QIODevice::WriteOnly | QIODevice::Append))
        log.write(line.toUtf8());
}

} // namespace tuppi
