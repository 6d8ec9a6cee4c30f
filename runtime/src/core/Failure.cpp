#include "core/Failure.h"

#include <cerrno>
#include <cstring>

using namespace Qt::StringLiterals;

namespace engine {

Failure::Failure(const QString &sentence, int exitStatus)
    : m_sentence(sentence.simplified())
    , m_text(m_sentence.toUtf8())
    , m_exitStatus(exitStatus)
{
}

Failure usageFailure(const QString &sentence)
{
    return Failure(sentence, 2);
}

Failure systemFailure(const QString &doing, int errorNumber)
{
    switch (errorNumber) {
    case ENOSPC:
    case EDQUOT:
        return Failure(doing + u": the disk is full. Make room and try again."_s);
    case EROFS:
        return Failure(doing + u": the disk can only be read. Choose another folder or make it writable."_s);
    case EACCES:
    case EPERM:
        return Failure(doing + u": permission was refused. Check who may read and write there."_s);
    case ENOENT:
        return Failure(doing + u": it is not there."_s);
    case EIO:
        return Failure(doing + u": the disk reported an error. Check the disk and try again."_s);
    default:
        return Failure(doing + u": "_s + QString::fromLocal8Bit(std::strerror(errorNumber)) + u"."_s);
    }
}

} // namespace engine
