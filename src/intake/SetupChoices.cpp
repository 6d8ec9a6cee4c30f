#include "intake/SetupChoices.h"

#include <algorithm>

namespace tuppi {

using namespace Qt::StringLiterals;

QString PreselectedLanguage(const QString &stored, const QList<LanguageRow> &offered)
{
    const QString wanted = stored == "ru"_L1 ? u"en"_s : stored;
    const bool known = std::any_of(offered.cbegin(), offered.cend(),
                                   [&](const LanguageRow &row) { return row.code == wanted; });
    return known ? wanted : u"auto"_s;
}

bool NeedsRussianConfirmation(const QString &previous, const QString &chosen)
{
    return chosen == "ru"_L1 && previous != "ru"_L1;
}

QVariantMap RememberedChoices(const StartChoices &choices)
{
    QVariantMap remembered{{u"engine"_s, choices.engine},
                           {u"speakers"_s, choices.speakers},
                           {u"quickMode"_s, choices.quick}};
    if (choices.language != "ru"_L1)
        remembered.insert(u"language"_s, choices.language);
    return remembered;
}

} // namespace tuppi
