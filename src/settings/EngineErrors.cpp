#include "settings/EngineErrors.h"

#include "settings/L.h"

namespace tuppi {

using namespace Qt::StringLiterals;

QString LibraryFailureDetail(const QString &err)
{
    QString text = err;
    return text.remove(u"Помилка: "_s).remove(u"Error: "_s);
}

QString ModelFailureDetail(const QString &err)
{
    return L(LibraryFailureDetail(err).trimmed());
}

} // namespace tuppi
