#include "text/ModelCheck.h"

#include "text/CleanText.h"
#include "text/Scripts.h"
#include "text/Words.h"

#include <QRegularExpression>

#include <algorithm>
#include <iterator>
#include <vector>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

constexpr double fewestKept = 0.8;
constexpr double mostGrowth = 1.3;
constexpr qsizetype smallGrowth = 40;
constexpr qsizetype longestEnding = 3;
constexpr qsizetype shortestStem = 4;
constexpr qsizetype shortestName = 3;
constexpr qsizetype shortestTelling = 4; // letters; shorter ones hold sentences together

const QHash<QString, int> &tens()
{
    static const QHash<QString, int> words{{u"twenty"_s, 20}, {u"thirty"_s, 30},  {u"forty"_s, 40},  {u"fifty"_s, 50},
                                           {u"sixty"_s, 60},  {u"seventy"_s, 70}, {u"eighty"_s, 80}, {u"ninety"_s, 90}};
    return words;
}

} // namespace

QStringList comparableWords(const QString &text)
{
    static const QRegularExpression notWord(u"[^\\w']+"_s, QRegularExpression::UseUnicodePropertiesOption);
    static const QHash<QString, QString> figures{
        {u"one"_s, u"1"_s},  {u"two"_s, u"2"_s},  {u"three"_s, u"3"_s},   {u"four"_s, u"4"_s},
        {u"five"_s, u"5"_s}, {u"six"_s, u"6"_s},  {u"seven"_s, u"7"_s},   {u"eight"_s, u"8"_s},
        {u"nine"_s, u"9"_s}, {u"ten"_s, u"10"_s}, {u"eleven"_s, u"11"_s}, {u"twelve"_s, u"12"_s}};
    static const QRegularExpression thousands(u"(?<=\\d)[,.'\u00a0\u202f](?=\\d{3}(?!\\d))"_s);
    QStringList said;
    for (const QString &word :
         text.toCaseFolded().replace(u'\u2019', u'\'').remove(thousands).split(notWord, Qt::SkipEmptyParts))
        said += piecesOf(word);
    QStringList words;
    int ten = 0;
    for (const QString &word : said) {
        words.append(figures.value(word, word));
        if (ten > 0 && words.last().size() == 1 && words.last()[0].isDigit())
            words.append(QString::number(ten + words.last().toInt()));
        ten = tens().value(word);
        if (ten > 0)
            words.append(QString::number(ten));
    }
    return words;
}

namespace {

bool tells(const QString &word)
{
    return word.size() >= shortestTelling || isTellingPiece(word) ||
           std::ranges::any_of(word, [](QChar c) { return c.isDigit(); });
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

// Words that turn a sentence into its opposite. French "ne" is not among them: it comes and goes with good style.
const QSet<QString> &denialsIn(const QString &language)
{
    static const QHash<QString, QSet<QString>> languages = [] {
        const QHash<QString, QString> lists{
            {u"en"_s, u"not no never without nothing nobody nowhere none neither nor"_s},
            {u"de"_s, u"nicht kein keine keinen keinem keiner keines keins nie niemals niemand niemanden niemandem "
                      "nichts nirgends nein ohne weder"_s},
            {u"fr"_s, u"pas jamais rien personne aucun aucune non sans ni"_s},
            {u"es"_s, u"no nunca jamás nada nadie ningún ninguno ninguna sin tampoco ni"_s},
            {u"it"_s, u"non no mai niente nulla nessun nessuno nessuna senza né neanche nemmeno neppure"_s},
            {u"pt"_s, u"não nunca jamais nada ninguém nenhum nenhuma sem nem tampouco"_s},
            {u"nl"_s, u"niet geen nooit niemand niets nergens zonder nee noch"_s},
            {u"pl"_s, u"nie nigdy nikt nikogo nikomu nic niczego żaden żadna żadne żadnego żadnej bez ani"_s},
            {u"ru"_s, u"не нет ни никогда никто никого никому ничего ничто нельзя без"_s},
            {u"uk"_s, u"не ні ані немає нема ніколи ніхто нікого нікому нічого ніщо без"_s},
            {u"zh"_s, u"不 没 沒 无 無 别 別 未 非"_s},
            {u"ja"_s, u"ません なかっ なけれ ない なく 無 不 未 非"_s}};
        QHash<QString, QSet<QString>> sets;
        for (auto list = lists.begin(); list != lists.end(); ++list) {
            const QStringList words = list->split(u' ');
            sets[list.key()] = QSet<QString>(words.begin(), words.end());
        }
        return sets;
    }();
    const auto found = languages.find(mainLanguage(language));
    return found != languages.end() ? *found : *languages.find(u"en"_s);
}

// "do not" for "don't".
QStringList withNotApart(const QStringList &words)
{
    QStringList apart;
    for (const QString &word : words) {
        if (word.endsWith(u"n't"))
            apart += {word.chopped(3), u"not"_s};
        else if (word == u"cannot")
            apart += {u"can"_s, u"not"_s};
        else
            apart.append(word);
    }
    return apart;
}

// What was said again at once is said once: "I don't I don't know".
QStringList withoutRepetitions(const QStringList &words)
{
    constexpr qsizetype longest = 3;
    QStringList kept;
    for (const QString &word : words) {
        kept.append(word);
        for (qsizetype length = 1; length <= longest && 2 * length <= kept.size(); ++length) {
            if (std::equal(kept.end() - length, kept.end(), kept.end() - 2 * length)) {
                kept.remove(kept.size() - length, length);
                break;
            }
        }
    }
    return kept;
}

// Whether as many denials stand between the same words of both texts.
bool deniesTheSame(const QStringList &said, const QStringList &written, const QString &language)
{
    const QStringList before = withoutRepetitions(said);
    const QStringList after = withoutRepetitions(written);
    const auto count = [&denials = denialsIn(language)](const QStringList &words, size_t from, size_t to) {
        return std::count_if(words.begin() + qsizetype(from), words.begin() + qsizetype(to),
                             [&](const QString &word) { return denials.contains(word); });
    };
    std::vector<std::pair<size_t, size_t>> same = commonWords(before, after);
    same.emplace_back(before.size(), after.size());
    size_t fromBefore = 0;
    size_t fromAfter = 0;
    for (const auto &[place, at] : same) {
        if (count(before, fromBefore, place) != count(after, fromAfter, at))
            return false;
        fromBefore = place + 1;
        fromAfter = at + 1;
    }
    return true;
}

bool hasDigit(const QString &word)
{
    return std::ranges::any_of(word, [](QChar c) { return c.isDigit(); });
}

// Only its figures: "21st" is 21.
QString figuresOf(QString word)
{
    word.removeIf([](QChar c) { return !c.isDigit(); });
    return word;
}

bool numbersWereSaid(const QString &text, const Vocabulary &said, bool english)
{
    constexpr int smallest = 13; // outside of English
    const QStringList words = comparableWords(text);
    return std::ranges::all_of(words, [&](const QString &word) {
        const QString figures = figuresOf(word);
        return figures.isEmpty() || said.holds(word) || said.holds(figures) ||
               word == u"1" || (!english && figures.toLongLong() < smallest);
    });
}

struct Written
{
    QString word;
    bool begins = false; // a sentence, or a quotation
};

std::vector<Written> wordsWritten(const QString &text)
{
    static const QRegularExpression word(u"[\\w'\u2019]+"_s, QRegularExpression::UseUnicodePropertiesOption);
    static const QString ends = u".!?:\"\u201c\u201d\u201e\u00ab-\u2013\u2014(\u2022*"_s;
    std::vector<Written> words;
    qsizetype last = 0;
    for (QRegularExpressionMatchIterator it = word.globalMatch(text); it.hasNext();) {
        const QRegularExpressionMatch match = it.next();
        const QString between = text.sliced(last, match.capturedStart() - last);
        const bool begins =
            words.empty() || std::ranges::any_of(between, [](QChar c) { return ends.contains(c); });
        words.push_back({match.captured(), begins});
        last = match.capturedEnd();
    }
    return words;
}

bool isCapital(const QString &word)
{
    return word[0].isUpper() && word.size() > 1;
}

bool wasSaid(QString word, const Vocabulary &said, bool english)
{
    word = word.toCaseFolded().replace(u'\u2019', u'\'');
    if (word.endsWith(u"'s"))
        word.chop(2);
    return said.holds(word) || said.holds(word + u"'s"_s) || (!english && said.holdsInflected(word));
}

// Words with which a sentence begins although nobody of that name is meant.
bool isOrdinaryBeginning(const QString &word)
{
    static const QSet<QString> ordinary{u"it"_s,    u"this"_s,    u"that"_s,     u"there"_s,    u"they"_s,
                                        u"he"_s,    u"she"_s,     u"we"_s,       u"you"_s,      u"everyone"_s,
                                        u"nobody"_s, u"everybody"_s, u"somebody"_s, u"someone"_s, u"each"_s,
                                        u"both"_s,  u"all"_s,     u"one"_s,      u"who"_s,      u"what"_s,
                                        u"which"_s, u"management"_s, u"participant"_s, u"attendee"_s};
    const QString key = word.toCaseFolded();
    static const QSet<QString> names{u"james"_s, u"charles"_s, u"jones"_s, u"williams"_s};
    const bool plural = key.endsWith(u's') && !key.endsWith(u"is") && !key.endsWith(u"as") && !key.endsWith(u"us");
    return ordinary.contains(key) || (plural && !names.contains(key));
}

} // namespace

Vocabulary::Vocabulary(const QStringList &words)
{
    for (const QString &word : words) {
        m_words.insert(word);
        m_byBeginning[word.left(shortestName)].insert(word);
    }
}

bool Vocabulary::holds(const QString &word) const
{
    if (m_words.contains(word))
        return true;
    const QSet<QString> near = m_byBeginning.value(word.left(shortestName));
    return std::ranges::any_of(near, [&](const QString &known) { return alike(word, known); });
}

bool Vocabulary::holdsInflected(const QString &name) const
{
    if (name.size() < shortestName || holds(name))
        return holds(name);
    const QSet<QString> near = m_byBeginning.value(name.left(shortestName));
    return std::ranges::any_of(near, [&](const QString &known) {
        const qsizetype stem = std::ranges::mismatch(name, known).in1 - name.begin();
        return stem + 1 >= std::min(name.size(), known.size()) && std::max(name.size(), known.size()) <= stem + 2;
    });
}

bool keepsWhatWasSaid(const QString &said, const QString &written, const QString &language)
{
    if (written.size() > qsizetype(double(said.size()) * mostGrowth) + smallGrowth)
        return false;
    const QStringList before = withNotApart(comparableWords(said));
    const QStringList after = withNotApart(comparableWords(written));
    const Vocabulary known(before);
    if (!std::ranges::all_of(after, [&](const QString &word) { return !tells(word) || known.holds(word); }) ||
        !deniesTheSame(before, after, language))
        return false;
    const Vocabulary kept(after);
    const auto telling = std::ranges::count_if(before, tells);
    const auto still =
        std::ranges::count_if(before, [&](const QString &word) { return tells(word) && kept.holds(word); });
    return !after.isEmpty() && double(still) >= fewestKept * double(telling);
}

bool namesOnlyWhatWasSaid(const QString &sentence, const Vocabulary &said, const QString &language)
{
    const bool english = language.startsWith(u"en");
    if (!numbersWereSaid(sentence, said, english))
        return false;
    if (language.startsWith(u"de") || language.startsWith(u"lb"))
        return true;
    static const QSet<QString> doing{u"will"_s, u"must"_s, u"should"_s, u"has"_s, u"needs"_s, u"is"_s, u"was"_s};
    const std::vector<Written> words = wordsWritten(sentence);
    for (size_t i = 0; i < words.size(); ++i) {
        if (!isCapital(words[i].word) || hasDigit(words[i].word) || wasSaid(words[i].word, said, english))
            continue;
        // At the beginning any word has a capital: a name is told by what follows it.
        const bool acts = english && i + 1 < words.size() && doing.contains(words[i + 1].word) &&
                          !isOrdinaryBeginning(words[i].word);
        const bool fullName = i + 1 < words.size() && !words[i + 1].begins && isCapital(words[i + 1].word) &&
                              !wasSaid(words[i + 1].word, said, english);
        const bool owns = english && (words[i].word.endsWith(u"'s") || words[i].word.endsWith(u"\u2019s"));
        if (!words[i].begins || acts || fullName || owns)
            return false;
    }
    return true;
}

bool titleFits(const QString &title, const Vocabulary &said, const QString &language)
{
    const std::vector<Written> words = wordsWritten(title);
    std::vector<Written> telling;
    std::ranges::copy_if(words, std::back_inserter(telling), [](const Written &one) { return tells(one.word); });
    const bool allCapitals =
        std::ranges::all_of(telling, [](const Written &one) { return isCapital(one.word) || hasDigit(one.word); });
    if (!allCapitals)
        return namesOnlyWhatWasSaid(title, said, language);
    const bool english = language.startsWith(u"en");
    const auto known =
        std::ranges::count_if(telling, [&](const Written &one) { return wasSaid(one.word, said, english); });
    return numbersWereSaid(title, said, english) && 2 * known >= std::ssize(telling);
}

} // namespace engine
