#include "settings/Fill.h"

#include <QRegularExpression>

#include <optional>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

QString rendered(const QVariant &value, QStringView kind, QStringView decimals)
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

/// One place of a format, as %2$.1f.
struct Placeholder
{
    qsizetype length = 0;
    QStringView position; ///< digits, counted from one; empty: the next argument
    QStringView decimals;
    QStringView kind;     ///< empty for a percent sign
};

QStringView leadingDigits(QStringView text)
{
    qsizetype count = 0;
    while (count < text.size() && text.at(count) >= u'0' && text.at(count) <= u'9')
        ++count;
    return text.first(count);
}

/// By hand: the regular expressions' library would cost every start its memory.
std::optional<Placeholder> placeholderAt(QStringView text)
{
    QStringView rest = text.sliced(1);
    if (rest.startsWith(u'%'))
        return Placeholder{2, {}, {}, {}};
    Placeholder found;
    const QStringView position = leadingDigits(rest);
    if (!position.isEmpty() && rest.sliced(position.size()).startsWith(u'$')) {
        found.position = position;
        rest = rest.sliced(position.size() + 1);
    }
    if (rest.startsWith(u'.')) {
        found.decimals = leadingDigits(rest.sliced(1));
        if (found.decimals.isEmpty())
            return std::nullopt;
        rest = rest.sliced(1 + found.decimals.size());
    }
    for (const QStringView kind : {QStringView(u"@"), QStringView(u"lu"), QStringView(u"ld"), QStringView(u"d"), QStringView(u"f")}) {
        if (!rest.startsWith(kind))
            continue;
        found.kind = kind;
        found.length = text.size() - rest.size() + kind.size();
        return found;
    }
    return std::nullopt;
}

} // namespace

QString Fill(const QString &format, const QVariantList &arguments)
{
    const QStringView whole(format);
    QString text;
    qsizetype copied = 0;
    qsizetype next = 0;
    for (qsizetype at = whole.indexOf(u'%'); at >= 0; at = whole.indexOf(u'%', at)) {
        const std::optional<Placeholder> place = placeholderAt(whole.sliced(at));
        if (!place) {
            ++at;
            continue;
        }
        text += whole.sliced(copied, at - copied);
        at = copied = at + place->length;
        if (place->kind.isEmpty()) {
            text += u'%';
            continue;
        }
        const qsizetype index = place->position.isEmpty() ? next++ : place->position.toInt() - 1;
        if (index >= 0 && index < arguments.size())
            text += rendered(arguments.at(index), place->kind, place->decimals);
    }
    text += whole.sliced(copied);
    return text;
}

QString OneLine(const QString &text)
{
    static const QRegularExpression breaks(u"[\\p{Cc}\\x{2028}\\x{2029}]+"_s);
    return QString(text).replace(breaks, u" "_s).trimmed();
}

} // namespace tuppi
