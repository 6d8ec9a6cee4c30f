#include "export/CallFile.h"

#include <QFileInfo>

namespace tuppi {

using namespace Qt::StringLiterals;

QString CallFile(const QString &callDir, const QString &name)
{
    const QString technical = callDir + u"/Technical files"_s;
    if (!QFileInfo(technical).isDir())
        return callDir + u'/' + name;
    if (name == "call.md"_L1)
        return callDir + u"/Summary.md"_s;
    if (name == "transcript.raw.txt"_L1)
        return callDir + u"/Transcript.txt"_s;
    return technical + u'/' + name;
}

} // namespace tuppi
