#include "text/ModelCheck.h"

#include <QHash>
#include <QRegularExpression>
#include <QSet>
#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

constexpr double fewestKept = 0.8;
constexpr double mostGrowth = 1.3;
constexpr qsizetype smallGrowth = 40;
constexpr qsizetype longestEnding = 3;
constexpr qsizetype shortestStem = 4;
constexpr qsizetype shortestTelling = 4; // letters; shorter ones hold sentences together

QStringList allWords(const QString &text)
{
    static const QRegularExpression notWord(u"[^\\w']+"_s, QRegularExpression::UseUnicodePropertiesOption);
    static const QHash<QString, QString> figures{
        {u"one"_s, u"1"_s},  {u"two"_s, u"2"_s},  {u"three"_s, u"3"_s},   {u"four"_s, u"4"_s},
        {u"five"_s, u"5"_s}, {u"six"_s, u"6"_s},  {u"seven"_s, u"7"_s},   {u"eight"_s, u"8"_s},
        {u"nine"_s, u"9"_s}, {u"ten"_s, u"10"_s}, {u"eleven"_s, u"11"_s}, {u"twelve"_s, u"12"_s}};
    QStringList words = text.toCaseFolded().replace(u'\u2019', u'\'').split(notWord, Qt::SkipEmptyParts);
    for (QString &word : words)
        word = figures.value(word, word);
    return words;
}

bool tells(const QString &word)
{
    return word.size() >= shortestTelling || std::ranges::any_of(word, [](QChar c) { return c.isDigit(); });
}

bool alike(const QString &a, const QString &b)
{
    if (a == b)
        return true;
    const qsizetype shorter = std::min(a.size(), b.size());
    const qsizetype stem = std::ranges::mismatch(a, b).in1 - a.begin();
    return !a[0].isDigit() && stem >= std::min(shorter, shortestStem) && shorter >= shortestStem &&
           std::max(a.size(), b.size()) - stem <= longestEnding;
}

// The telling words of one text, asked whether they hold one of the other.
class Vocabulary
{
public:
    explicit Vocabulary(const QStringList &words)
    {
        for (const QString &word : words) {
            m_words.insert(word);
            m_byBeginning[word.left(shortestStem)].insert(word);
        }
    }

    bool holds(const QString &word) const
    {
        if (m_words.contains(word))
            return true;
        const QSet<QString> near = m_byBeginning.value(word.left(shortestStem));
        return std::ranges::any_of(near, [&](const QString &known) { return alike(word, known); });
    }

private:
    QSet<QString> m_words;
    QHash<QString, QSet<QString>> m_byBeginning;
};

bool denies(const QStringList &words)
{
    static const QSet<QString> denials{u"not"_s,     u"never"_s,  u"cannot"_s,
                                       u"nothing"_s, u"nobody"_s, u"none"_s};
    return std::ranges::any_of(
        words, [](const QString &word) { return denials.contains(word) || word.endsWith(u"n't"); });
}

} // namespace

bool keepsWhatWasSaid(const QString &said, const QString &written)
{
    if (written.size() > qsizetype(double(said.size()) * mostGrowth) + smallGrowth)
        return false;
    const QStringList before = allWords(said);
    const QStringList after = allWords(written);
    const Vocabulary known(before);
    if (!std::ranges::all_of(after, [&](const QString &word) { return !tells(word) || known.holds(word); }) ||
        denies(before) != denies(after))
        return false;
    const Vocabulary kept(after);
    const auto telling = std::ranges::count_if(before, tells);
    const auto still =
        std::ranges::count_if(before, [&](const QString &word) { return tells(word) && kept.holds(word); });
    return !after.isEmpty() && double(still) >= fewestKept * double(telling);
}

} // namespace engine
