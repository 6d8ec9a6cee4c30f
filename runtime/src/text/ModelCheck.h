#pragma once

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

namespace engine {

// The words of a text, asked whether they hold one of another text: the same, or the same with another ending.
class Vocabulary
{
public:
    Vocabulary() = default;
    explicit Vocabulary(const QStringList &words);

    bool holds(const QString &word) const;

    // Of a name, also with another case's last letters: "Anne" for "Annu".
    bool holdsInflected(const QString &name) const;

private:
    QSet<QString> m_words;
    QHash<QString, QSet<QString>> m_byBeginning; // the first letters
};

// Words in one form: small letters, figures for English numbers; "twenty five" gives "twenty", "20", "5" and "25".
QStringList comparableWords(const QString &text);

// Whether a text that a text model made of a part of a transcript says the same: no word that tells something
// is new (another ending, or figures for a number, are not), most of them are still there, and what denies ("not",
// "nicht", "pas") stands where it was said, in the languages in which these words are known.
bool keepsWhatWasSaid(const QString &said, const QString &written, const QString &language);

// Whether a sentence of a summary names only numbers and persons that were said. `said` holds the comparable words of
// the transcript. A name is a word with a capital that does not begin a sentence; in German, where every noun has one,
// names are not told from other words, and small numbers are looked at in English alone, since other languages' words
// for them are not known.
bool namesOnlyWhatWasSaid(const QString &sentence, const Vocabulary &said, const QString &language);

// The same of a title. Where all its words have capitals, half of them must have been said.
bool titleFits(const QString &title, const Vocabulary &said, const QString &language);

} // namespace engine
