#pragma once

#include <QHash>
#include <QLocale>
#include <QString>
#include <QStringList>
#include <QTranslator>

namespace tuppi {

/// The text in the interface language; an empty text and a text without an entry come back unchanged.
/// May be called from any thread.
QString L(const QString &text);

/// Marks a text that L() gets later, in a variable. Nothing happens to it here: the tables are held against the
/// texts that stand in L() and in this.
inline QString LText(const QString &text)
{
    return text;
}

/// One localisation table: JSON object of English text to translation. Installed into the application, it is
/// what L() looks into. It also names the standard buttons and editing commands of Qt that it has texts for:
/// not every language has a catalogue of Qt's own.
class LocalTable : public QTranslator
{
    Q_OBJECT
public:
    using QTranslator::QTranslator;

    /// Reads a table file, replacing what was there. False (and an empty table) when the file is missing or
    /// is not an object of texts.
    bool loadTable(const QString &path);

    /// The whole table, as the viewer page is handed it.
    const QHash<QString, QString> &texts() const { return m_texts; }

    bool isEmpty() const override { return m_texts.isEmpty(); }
    QString translate(const char *context, const char *sourceText, const char *disambiguation = nullptr,
                      int n = -1) const override;

private:
    QHash<QString, QString> m_texts;
};

/// Codes of the interface languages, in the order of the menu.
QStringList InterfaceLanguageCodes();
/// What a language of the menu is called in itself; empty for any other.
QString InterfaceLanguageName(const QString &code);

/// The chosen interface language out of the stored "AppleLanguages" value: its first element when it is a
/// list with at least one, else "auto".
QString ChosenInterfaceLanguage(const QVariant &stored);

/// The interface language in use: the chosen one when there is a table for it, else the first of the
/// system's languages (as QLocale::uiLanguages gives them) that there is one for, else "en".
QString InterfaceLanguageInUse(const QString &chosen, const QStringList &systemLanguages);

/// Reads the language's table out of a folder. Gives back the language, or "en" and an empty table when there
/// is none that can be read.
QString LoadInterfaceTexts(LocalTable &table, const QString &language, const QString &folder = {});

/// How dates, sizes and numbers are written and names are sorted in the interface language: as on the rest of
/// the system where it speaks the language, else as most do. Digits are 0 to 9 in every language: dates,
/// progress and times come from the engine in these, and two kinds do not mix.
QLocale InterfaceLocale(const QString &language, const QLocale &system);

} // namespace tuppi
