#include "settings/Fill.h"

#include <QRegularExpression>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

QString rendered(const QVariant &value, const QString &kind, const QString &decimals)
{
    bool isNumber = false;
    if (kind == u"f") {
        const double number = value.toDouble(&isNumber);
        return isNumber ? QString::number(number, 'f', decimals.isEmpty() ? 6 : decimals.toInt()) : value.toString();
    }
    if (kind != u"@") {
        const qlonglong number = value.toLongLong(&isNumber);
        return isNumber ? QString::number(number) : value.toString();
    }
    return value.toString();
}

} // namespace

QString Fill(const QString &format, const QVariantList &arguments)
{
    static const QRegularExpression placeholder(uR"(%(?:%|(?:(\d+)\$)?(?:\.(\d+))?(@|lu|ld|d|f)))"_s);
    QString text;
    qsizetype copied = 0;
    qsizetype next = 0;
    auto matches = placeholder.globalMatch(format);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        text += QStringView(format).sliced(copied, match.capturedStart() - copied);
        copied = match.capturedEnd();
        if (match.captured(3).isEmpty()) {
            text += u'%';
            continue;
        }
        const qsizetype index = match.captured(1).isEmpty() ? next++ : match.captured(1).toInt() - 1;
        if (index >= 0 && index < arguments.size())
            text += rendered(arguments.at(index), match.captured(3), match.captured(2));
    }
    text += QStringView(format).sliced(copied);
    return text;
}

} // namespace tuppi
