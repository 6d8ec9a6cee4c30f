#include "text/EnglishText.h"

#include "text/WordParts.h"
#include "text/WordSieve.h"

#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine::english {

namespace {

QSet<QString> setOf(QStringView words)
{
    QSet<QString> set;
    for (const QStringView word : words.split(u' '))
        set.insert(word.toString());
    return set;
}

bool isFiller(const QString &key)
{
    static const QSet<QString> fillers = setOf(u"uh uhm um umm er erm hmm");
    return fillers.contains(key);
}

// "It was, you know, difficult": behind these words nobody can be told what they know.
bool fillerAt(const std::vector<Word> &words, size_t at, const std::vector<Word> &kept)
{
    static const QSet<QString> before = setOf(u"a an the is are was were be been very really quite of to "
                                              u"with in on at for from my our your his their "
                                              "it's that's there's we're i'm");
    static const QSet<QString> known = setOf(
        u"a an the that this these those what how who why where when if whether it him her them me us my "
        "your his our their about of nothing everything something");
    if (kept.empty() || at + 1 >= words.size() || WordParts(words[at].text).key() != u"you" ||
        WordParts(words[at + 1].text).key() != u"know" || !before.contains(WordParts(kept.back().text).key()))
        return false;
    return at + 2 < words.size() && !known.contains(WordParts(words[at + 2].text).key());
}

bool isStammered(const QString &key)
{
    static const QSet<QString> words = setOf(
        u"the a an i we he she they it you and but to of at for with are were my our your his their this "
        "if as or from by when what who there it's i'm we're they're that's because can could will would "
        "i've i'll we'll we've he's she's");
    return words.contains(key);
}

// What is said again after a longer pause begins something new.
constexpr qint64 longestStammerPauseMs = 700;

// Whether the `count` words from `at` are said again at once.
bool saidAgain(const std::vector<Word> &words, size_t at, size_t count)
{
    if (at + 2 * count > words.size() ||
        words[at + count].startMs - words[at + count - 1].endMs > longestStammerPauseMs ||
        !isStammered(WordParts(words[at].text).key()))
        return false;
    for (size_t i = at; i < at + count; ++i) {
        const WordParts first(words[i].text);
        if (first.endsSentence() || first.key() != WordParts(words[i + count].text).key())
            return false;
    }
    return true;
}

const QSet<QString> &monthsAndDays()
{
    static const QSet<QString> names = setOf(
        u"monday tuesday wednesday thursday friday saturday sunday january february april june july august "
        "september october november december");
    return names;
}

// Written with a capital wherever they stand; words that mean something else as well (polish, turkey) are left out.
const QSet<QString> &properNames()
{
    static const QSet<QString> names = setOf(
        u"africa america asia australia austria belgium berlin brazil britain california canada denmark egypt england "
        "europe finland florida france germany india ireland israel italy japan london mexico moscow norway paris "
        "poland portugal russia scotland spain sweden switzerland ukraine washington african american asian australian "
        "austrian belgian brazilian british canadian chinese danish dutch egyptian english european french german "
        "greek indian irish italian japanese korean mexican norwegian portuguese russian scottish spanish swedish "
        "ukrainian christmas easter google americans germans russians europeans canadians italians");
    return names;
}

bool isName(const QStringList &keys, qsizetype at)
{
    QString key = keys[at];
    if (key == u"i" || key.startsWith(u"i'"))
        return true;
    if (key.endsWith(u"'s"))
        key.chop(2);
    else if (key.endsWith(u"days"))
        key.chop(1);
    if (monthsAndDays().contains(key) || properNames().contains(key))
        return true;
    static const QSet<QString> before = setOf(u"in of since until last next early late mid");
    const QString next = keys.value(at + 1);
    const bool dayFollows = !next.isEmpty() && next[0].isDigit(); // it is a figure by now
    return (key == u"may" || key == u"march") &&
           ((at > 0 && before.contains(keys[at - 1])) || dayFollows);
}

QStringList keysOf(const QStringList &words)
{
    QStringList keys;
    for (const QString &word : words)
        keys.append(WordParts(word).key());
    return keys;
}

// Whether an auxiliary and what follows it stand as only a question puts them: "did you", "is the".
bool inverted(const QString &verb, const QString &subject)
{
    static const QSet<QString> people = setOf(u"i you we they he she it");
    static const QSet<QString> things =
        setOf(u"the this that these those there my your his her our their anyone anybody");
    static const QSet<QString> withThings =
        setOf(u"is are was were does did has isn't aren't wasn't weren't "
              "doesn't didn't hasn't will won't would wouldn't can can't could "
              "couldn't");
    static const QSet<QString> withPeople = setOf(u"do have am haven't");
    static const QSet<QString> plural = setOf(u"i you we they");
    if (verb == u"should" || verb == u"shouldn't")
        return subject != u"you" && people.contains(subject); // "should you need help, call" asks nothing
    if (verb == u"were" && (subject == u"i" || subject == u"it"))
        return false;
    if (verb == u"may")
        return subject == u"i" || subject == u"we";
    if (verb == u"don't")
        return plural.contains(subject);
    if (withPeople.contains(verb))
        return plural.contains(subject);
    return withThings.contains(verb) && (people.contains(subject) || things.contains(subject));
}

bool isAuxiliary(const QString &key)
{
    static const QSet<QString> verbs = setOf(
        u"is are was were am do does did can could will would should has have had isn't aren't wasn't don't "
        "doesn't didn't can't couldn't won't wouldn't shouldn't");
    return verbs.contains(key);
}

bool asksWithWord(const QStringList &keys, qsizetype at)
{
    static const QSet<QString> words = setOf(u"who what when where why how whose which");
    static const QSet<QString> shortened = setOf(u"who's what's where's how's why's");
    static const QSet<QString> measures = setOf(u"many much long often far old big");
    const QString second = keys.value(at + 1);
    const QStringList rest = keys.mid(at + 2);
    // "What is clear is that …" says something.
    const bool says = rest.contains(u"is"_s) || rest.contains(u"was"_s);
    if (shortened.contains(keys[at]))
        return !says && keys.size() > at + 1;
    if (!words.contains(keys[at]))
        return false;
    const QString third = keys.value(at + 2);
    if (isAuxiliary(second)) {
        static const QSet<QString> be = setOf(u"is are was were");
        // "which was good" only goes on with what was said before.
        const bool alone =
            keys[at] != u"which" && (be.contains(second) || keys[at] == u"who" || keys[at] == u"what");
        return !says && !third.isEmpty() && (alone || inverted(second, third));
    }
    if ((keys[at] == u"how" && measures.contains(second)) ||
        (keys[at] == u"what" && (second == u"time" || second == u"kind")))
        return std::ranges::any_of(keys.mid(at + 2, 4), isAuxiliary);
    return (keys[at] == u"what" || keys[at] == u"how") && second == u"about" && keys.size() <= at + 6;
}

bool endsWithTag(const QStringList &keys)
{
    static const QSet<QString> verbs = setOf(u"isn't aren't wasn't weren't don't doesn't didn't can't "
                                             u"couldn't won't wouldn't shouldn't haven't hasn't");
    static const QSet<QString> subjects = setOf(u"i you he she it we they there");
    return keys.size() > 3 && subjects.contains(keys.back()) && verbs.contains(keys[keys.size() - 2]);
}

} // namespace

std::vector<Word> withoutFillers(const std::vector<Word> &words)
{
    WordSieve sieve;
    for (size_t i = 0; i < words.size(); ++i) {
        if (isFiller(WordParts(words[i].text).key())) {
            sieve.drop(words[i]);
        } else if (fillerAt(words, i, sieve.kept())) {
            sieve.drop(words[i]);
            sieve.drop(words[++i]);
        } else {
            sieve.keep(words[i]);
        }
    }
    return sieve.take();
}

std::vector<Word> withoutStammers(const std::vector<Word> &words)
{
    WordSieve sieve;
    for (size_t i = 0; i < words.size(); ++i) {
        const size_t again = saidAgain(words, i, 2) ? 2 : saidAgain(words, i, 1) ? 1 : 0;
        if (again == 0) {
            sieve.keep(words[i]);
            continue;
        }
        for (const size_t behind = i + again; i + 1 < behind; ++i)
            sieve.drop(words[i]);
        sieve.drop(words[i]);
    }
    return sieve.take();
}

QStringList withCapitals(QStringList words)
{
    const QStringList keys = keysOf(words);
    for (qsizetype i = 0; i < words.size(); ++i) {
        if (isName(keys, i))
            words[i] = capitalisedWord(words[i]);
    }
    return words;
}

bool asks(const QStringList &sentence)
{
    static const QSet<QString> openings = setOf(u"so and but well okay ok now then oh yeah yes no hi hello");
    const QStringList keys = keysOf(sentence);
    qsizetype at = 0;
    while (at < 2 && at + 2 < keys.size() && openings.contains(keys[at]))
        ++at;
    if (keys.size() < at + 2)
        return false;
    // "So do I."
    const bool echo = at > 0 && keys[at - 1] == u"so" && keys.size() <= at + 2;
    return (!echo && keys.size() >= at + 3 && inverted(keys[at], keys[at + 1])) || asksWithWord(keys, at) ||
           endsWithTag(keys);
}

} // namespace engine::english
