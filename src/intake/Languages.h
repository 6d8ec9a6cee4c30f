#pragma once

#include <QList>
#include <QLocale>
#include <QString>
#include <QStringList>

namespace tuppi {

/// A language of recordings.
struct LanguageRow
{
    QString code;  ///< of two letters, or "auto"
    QString name;

    bool operator==(const LanguageRow &) const = default;
};

/// The languages that can be chosen, by their English names.
const QList<LanguageRow> &LanguageTable();

/// The same as a menu shows them: named in the interface language, sorted as `locale` sorts, "auto" in front.
QList<LanguageRow> Languages(const QLocale &locale);

/// The languages that the Parakeet model knows.
const QStringList &ParakeetLanguages();

/// What is said beside the language menu about a choice; `name` is the language's displayed name.
QString LanguageHint(const QString &model, const QString &code, const QString &name);

} // namespace tuppi
