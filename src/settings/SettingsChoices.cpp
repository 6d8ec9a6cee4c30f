#include "settings/SettingsChoices.h"

#include "settings/L.h"

namespace tuppi {

using namespace Qt::StringLiterals;

int SelectedChoice(const QList<Choice> &choices, const QString &value)
{
    for (int item = 0; item < choices.size(); ++item) {
        if (choices.at(item).value == value)
            return item;
    }
    return choices.isEmpty() ? -1 : 0;
}

bool HasSeparatorAbove(const QList<Choice> &choices, int item)
{
    const auto isCustom = [&](int at) { return choices.at(at).value.startsWith("custom:"_L1); };
    return item > 0 && isCustom(item) && !isCustom(item - 1);
}

QList<Choice> ModelChoices(const QList<ModelRow> &models)
{
    QList<Choice> choices;
    for (const ModelRow &model : models)
        choices.append({model.title, model.id});
    return choices;
}

QList<Choice> LanguageChoices(const QList<LanguageRow> &languages)
{
    QList<Choice> choices;
    for (const LanguageRow &language : languages) {
        if (language.code != "ru"_L1)
            choices.append({language.name, language.code});
    }
    return choices;
}

QList<Choice> InterfaceLanguageChoices()
{
    QList<Choice> choices{{L(u"Automatic (same as the Mac)"_s), u"auto"_s}};
    for (const QString &code : InterfaceLanguageCodes())
        choices.append({InterfaceLanguageName(code), code});
    return choices;
}

QVariant StoredInterfaceLanguage(const QString &code)
{
    return code == "auto"_L1 ? QVariant() : QVariant(QStringList{code});
}

} // namespace tuppi
