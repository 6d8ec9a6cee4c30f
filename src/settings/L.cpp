#include "settings/L.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QVariant>

#include <algorithm>
#include <array>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

constexpr char tableName[] = "Localizable";

struct InterfaceLanguage
{
    QString code;
    QString name;
};

/// Where Qt keeps the texts of standard buttons and of the commands in a text field's menu.
bool isStandardContext(const char *context)
{
    static constexpr std::array contexts{"QPlatformTheme", "QDialogButtonBox", "QFileDialog", "QLineEdit",
                                         "QWidgetTextControl"};
    return std::any_of(contexts.begin(), contexts.end(),
                       [context](const char *standard) { return qstrcmp(context, standard) == 0; });
}

const QList<InterfaceLanguage> &interfaceLanguages()
{
    static const QList<InterfaceLanguage> languages{{u"en"_s, u"English"_s},       {u"uk"_s, u"Українська"_s},
                                                    {u"zh-Hans"_s, u"中文（简体）"_s}, {u"hi"_s, u"हिन्दी"_s},
                                                    {u"es"_s, u"Español"_s},       {u"ar"_s, u"العربية"_s}};
    return languages;
}

} // namespace

QString L(const QString &text)
{
    return text.isEmpty() ? text : QCoreApplication::translate(tableName, text.toUtf8().constData());
}

bool LocalTable::loadTable(const QString &path)
{
    m_texts.clear();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll());
    if (!document.isObject())
        return false;
    const QJsonObject table = document.object();
    for (auto entry = table.begin(); entry != table.end(); ++entry) {
        const QString translation = entry.value().toString();
        if (!translation.isEmpty())
            m_texts.insert(entry.key(), translation);
    }
    return true;
}

QString LocalTable::translate(const char *context, const char *sourceText, const char *, int) const
{
    const QString text = QString::fromUtf8(sourceText);
    if (qstrcmp(context, tableName) == 0)
        return m_texts.value(text);
    // The marks of access keys are left out: where they would stand is for each language to say.
    return isStandardContext(context) ? m_texts.value(QString(text).remove(u'&')) : QString();
}

QStringList InterfaceLanguageCodes()
{
    QStringList codes;
    for (const InterfaceLanguage &language : interfaceLanguages())
        codes.append(language.code);
    return codes;
}

QString InterfaceLanguageName(const QString &code)
{
    for (const InterfaceLanguage &language : interfaceLanguages()) {
        if (language.code == code)
            return language.name;
    }
    return {};
}

QString ChosenInterfaceLanguage(const QVariant &stored)
{
    // A text would convert to the list of its characters.
    const bool isList = stored.typeId() == QMetaType::QVariantList || stored.typeId() == QMetaType::QStringList;
    const QVariantList languages = isList ? stored.toList() : QVariantList();
    return languages.isEmpty() ? u"auto"_s : languages.first().toString();
}

QString InterfaceLanguageInUse(const QString &chosen, const QStringList &systemLanguages)
{
    const QStringList known = InterfaceLanguageCodes();
    if (known.contains(chosen))
        return chosen;
    for (const QString &system : systemLanguages) {
        const QString language = system.section(u'-', 0, 0);
        // Traditional script is another written language; its readers are better served by the next choice.
        if (language == "zh"_L1 && QLocale(system).script() == QLocale::SimplifiedChineseScript)
            return u"zh-Hans"_s;
        if (known.contains(language))
            return language;
    }
    return u"en"_s;
}

QString LoadInterfaceTexts(LocalTable &table, const QString &language, const QString &folder)
{
    const QString path = (folder.isEmpty() ? u":/localization"_s : folder) + u'/' + language + u".json"_s;
    return table.loadTable(path) ? language : u"en"_s;
}

QLocale InterfaceLocale(const QString &language, const QLocale &system)
{
    // Of the Arabic ones, the first that writes 0 to 9.
    const QLocale usual =
        language == "ar"_L1 ? QLocale(QLocale::Arabic, QLocale::UnitedArabEmirates) : QLocale(language);
    const bool sameLanguage = system.language() == usual.language() && system.script() == usual.script();
    return sameLanguage && system.zeroDigit() == usual.zeroDigit()
        ? QLocale(system.language(), system.script(), system.territory())
        : usual;
}

} // namespace tuppi
