#pragma once

#include "intake/Languages.h"
#include "settings/Models.h"

#include <QList>
#include <QString>
#include <QVariant>

namespace tuppi {

/// One item of a settings menu: what it shows, and what is stored when it is chosen.
struct Choice
{
    QString title;
    QString value;

    bool operator==(const Choice &) const = default;
};

/// The item that stands for a stored value: the first with that value, else the first of all; -1 without items.
int SelectedChoice(const QList<Choice> &choices, const QString &value);

/// True where a separator goes above the item: between the built-in speech models and the user's own.
bool HasSeparatorAbove(const QList<Choice> &choices, int item);

QList<Choice> ModelChoices(const QList<ModelRow> &models);
/// Without Russian, which is never a starting choice.
QList<Choice> LanguageChoices(const QList<LanguageRow> &languages);
/// Automatic, then every interface language by its own name.
QList<Choice> InterfaceLanguageChoices();

/// What is stored under "AppleLanguages" for a choice; nothing (which removes the key) for "auto".
QVariant StoredInterfaceLanguage(const QString &code);

} // namespace tuppi
