#include "text/Clock.h"

using namespace Qt::StringLiterals;

namespace engine {

QString clock(qint64 ms)
{
    const qint64 seconds = ms / 1000;
    return u"%1:%2:%3"_s.arg(seconds / 3600, 2, 10, QChar(u'0'))
        .arg(seconds / 60 % 60, 2, 10, QChar(u'0'))
        .arg(seconds % 60, 2, 10, QChar(u'0'));
}

} // namespace engine
