#include "engine/EngineErrors.h"

#include "settings/L.h"

namespace tuppi {

using namespace Qt::StringLiterals;

QString WithoutErrorPrefixes(const QString &err)
{
    QString text = err;
    return text.remove(u"Помилка: "_s).remove(u"Error: "_s);
}

QString FailureDetail(const QString &err)
{
    return L(WithoutErrorPrefixes(err).trimmed().section(u'\n', -1));
}

QString ModelFailureDetail(const QString &err)
{
    return L(WithoutErrorPrefixes(err).trimmed());
}

} // namespace tuppi
