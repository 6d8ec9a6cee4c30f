#include "intake/Languages.h"

#include "settings/Fill.h"
#include "settings/L.h"

#include <QCollator>

#include <algorithm>

namespace tuppi {

using namespace Qt::StringLiterals;

const QList<LanguageRow> &LanguageTable()
{
    static const QList<LanguageRow> table{
        {u"uk"_s, LText(u"Ukrainian"_s)}, {u"en"_s, LText(u"English"_s)}, {u"pl"_s, LText(u"Polish"_s)},
        {u"de"_s, LText(u"German"_s)}, {u"fr"_s, LText(u"French"_s)}, {u"es"_s, LText(u"Spanish"_s)},
        {u"it"_s, LText(u"Italian"_s)}, {u"pt"_s, LText(u"Portuguese"_s)}, {u"nl"_s, LText(u"Dutch"_s)},
        {u"cs"_s, LText(u"Czech"_s)}, {u"sk"_s, LText(u"Slovak"_s)}, {u"ro"_s, LText(u"Romanian"_s)},
        {u"hu"_s, LText(u"Hungarian"_s)}, {u"bg"_s, LText(u"Bulgarian"_s)}, {u"hr"_s, LText(u"Croatian"_s)},
        {u"sl"_s, LText(u"Slovenian"_s)}, {u"el"_s, LText(u"Greek"_s)}, {u"sv"_s, LText(u"Swedish"_s)},
        {u"da"_s, LText(u"Danish"_s)}, {u"fi"_s, LText(u"Finnish"_s)}, {u"lt"_s, LText(u"Lithuanian"_s)},
        {u"tr"_s, LText(u"Turkish"_s)}, {u"he"_s, LText(u"Hebrew"_s)}, {u"ar"_s, LText(u"Arabic"_s)},
        {u"hi"_s, LText(u"Hindi"_s)}, {u"zh"_s, LText(u"Chinese"_s)}, {u"ja"_s, LText(u"Japanese"_s)},
        {u"ko"_s, LText(u"Korean"_s)}, {u"ru"_s, LText(u"Russian"_s)},
    };
    return table;
}

QList<LanguageRow> Languages(const QLocale &locale)
{
    QList<LanguageRow> rows = LanguageTable();
    for (LanguageRow &row : rows)
        row.name = L(row.name);
    QCollator collator(locale);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    collator.setNumericMode(true);
    std::stable_sort(rows.begin(), rows.end(), [&](const LanguageRow &one, const LanguageRow &other) {
        return collator.compare(one.name, other.name) < 0;
    });
    rows.prepend({u"auto"_s, L(u"Automatic"_s)});
    return rows;
}

const QStringList &ParakeetLanguages()
{
    static const QStringList codes{u"bg"_s, u"hr"_s, u"cs"_s, u"da"_s, u"nl"_s, u"en"_s, u"et"_s, u"fi"_s,
                                   u"fr"_s, u"de"_s, u"el"_s, u"hu"_s, u"it"_s, u"lv"_s, u"lt"_s, u"mt"_s,
                                   u"pl"_s, u"pt"_s, u"ro"_s, u"sk"_s, u"sl"_s, u"es"_s, u"sv"_s, u"uk"_s};
    return codes;
}

QString LanguageHint(const QString &model, const QString &code, const QString &name)
{
    if (code == "auto"_L1) {
        return L(
            u"Tuppi recognizes Ukrainian and English by itself. For any other language, choose it here."_s);
    }
    if (model == "parakeet"_L1 && !ParakeetLanguages().contains(code))
        return Fill(L(u"Parakeet doesn't know %@, so Whisper will be used for this file."_s), {name});
    if (model == "auto"_L1 && code != "uk"_L1 && code != "en"_L1)
        return Fill(L(u"%@ will be transcribed with Whisper."_s), {name});
    return Fill(L(u"The whole file is treated as %@."_s), {name});
}

} // namespace tuppi
