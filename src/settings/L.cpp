#include "settings/L.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QVariant>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

constexpr char tableName[] = "Localizable";

struct InterfaceLanguage
{
    QString code;
    QString name;
};

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
    if (qstrcmp(context, tableName) != 0)
        return {};
    return m_texts.value(QString::fromUtf8(sourceText));
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
        const bool traditional = system.contains("Hant"_L1) || system.endsWith("-TW"_L1) || system.endsWith("-HK"_L1);
        if (language == "zh"_L1 && !traditional)
            return u"zh-Hans"_s;
        if (known.contains(language))
            return language;
    }
    return u"en"_s;
}

} // namespace tuppi
