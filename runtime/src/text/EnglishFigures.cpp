#include "text/EnglishText.h"

#include "text/WordParts.h"

#include <QHash>
#include <QLocale>
#include <QSet>

#include <algorithm>
#include <cstdlib>
#include <optional>

using namespace Qt::StringLiterals;

namespace engine::english {

namespace {

constexpr qint64 smallestFigure = 10; // smaller numbers are written as words
constexpr qint64 million = 1'000'000;

const QHash<QString, int> &smallNumbers()
{
    static const QHash<QString, int> numbers = [] {
        const QStringList words =
            u"zero one two three four five six seven eight nine ten eleven twelve thirteen fourteen "
            "fifteen sixteen seventeen eighteen nineteen"_s.split(u' ');
        const QStringList tens = u"twenty thirty forty fifty sixty seventy eighty ninety"_s.split(u' ');
        QHash<QString, int> found;
        for (int i = 0; i < int(words.size()); ++i)
            found[words[i]] = i;
        for (int i = 0; i < int(tens.size()); ++i)
            found[tens[i]] = 20 + 10 * i;
        return found;
    }();
    return numbers;
}

bool isMonth(const QString &key)
{
    static const QStringList months =
        u"january february march april may june july august september october november december"_s.split(u' ');
    return months.contains(key);
}

// 1 to 20, and 30; 0 for other words.
int ordinal(const QString &key)
{
    static const QStringList words =
        u"first second third fourth fifth sixth seventh eighth ninth tenth eleventh twelfth thirteenth fourteenth "
        "fifteenth sixteenth seventeenth eighteenth nineteenth twentieth"_s.split(u' ');
    return key == u"thirtieth" ? 30 : int(words.indexOf(key)) + 1;
}

int ordinalUnit(const QString &key)
{
    static const QStringList words =
        u"first second third fourth fifth sixth seventh eighth ninth"_s.split(u' ');
    return int(words.indexOf(key)) + 1;
}

struct Number
{
    qint64 value = 0;
    size_t end = 0;       // behind its last word
    bool article = false; // "a hundred"
    bool oh = false;      // "oh five"
};

// What stands in place of words up to `end`.
struct Written
{
    QString text;
    size_t end = 0;
};

// Reads numbers out of words in lower case; a word with a sign behind it is the last of its number.
class Figures
{
public:
    explicit Figures(const std::vector<Word> &words)
        : m_words(words)
    {
        for (const Word &word : words)
            m_parts.emplace_back(word.text);
    }

    std::vector<Word> rewritten()
    {
        std::vector<Word> made;
        for (size_t at = 0; at < m_words.size();) {
            const std::optional<Written> written = figuresAt(at);
            if (!written) {
                made.push_back(m_words[at++]);
                continue;
            }
            if (written->text.isEmpty()) {
                made.insert(made.end(), m_words.begin() + std::ptrdiff_t(at),
                            m_words.begin() + std::ptrdiff_t(written->end));
            } else {
                const QString lead = m_parts[at].lead;
                const QString trail = m_parts[written->end - 1].trail;
                made.push_back(
                    {lead + written->text + trail, m_words[at].startMs, m_words[written->end - 1].endMs});
            }
            at = written->end;
        }
        return made;
    }

private:
    // The word at a place, where nothing separates it from the one before.
    QString key(size_t at) const
    {
        return at < m_parts.size() && (at == 0 || m_parts[at - 1].trail.isEmpty()) &&
                       m_parts[at].lead.isEmpty()
                   ? m_parts[at].key()
                   : QString();
    }
    QString keyBefore(size_t at) const
    {
        return at > 0 && m_parts[at - 1].trail.isEmpty() ? m_parts[at - 1].key() : QString();
    }
    int small(size_t at) const { return smallNumbers().value(key(at), -1); }

    std::optional<Number> below100(size_t at, bool first) const
    {
        const int value = first ? smallNumbers().value(m_parts[at].key(), -1) : small(at);
        if (value < 0)
            return std::nullopt;
        const int unit = at + 1 < m_parts.size() ? small(at + 1) : -1;
        if (value >= 20 && unit >= 1 && unit <= 9)
            return Number{value + unit, at + 2};
        return Number{value, at + 1};
    }

    // "and" only counts where a number follows it.
    std::optional<Number> rest(size_t at) const
    {
        const size_t start = key(at) == u"and" ? at + 1 : at;
        return start < m_parts.size() ? below100(start, false) : std::nullopt;
    }

    // "about hundred and fifty"; not of "several hundred and fifty", nor where a number is before it.
    bool beginsWithHundred(size_t at) const
    {
        static const QSet<QString> several{u"few"_s, u"several"_s, u"many"_s, u"couple"_s};
        const QString word = key(at);
        const QString before = keyBefore(at);
        return (word == u"hundred" || word == u"thousand") && !several.contains(before) && !smallNumbers().contains(before);
    }

    std::optional<Number> below1000(size_t at, bool first) const
    {
        std::optional<Number> number;
        const QString next = key(at + 1);
        if (first && m_parts[at].key() == u"a" &&
            (next == u"hundred" || next == u"thousand" || next == u"million"))
            number = Number{1, at + 1, true};
        else if (first && beginsWithHundred(at))
            number = Number{1, at, true};
        else
            number = below100(at, first);
        if (!number || number->value == 0 || number->value > 19 || key(number->end) != u"hundred")
            return number;
        number->value *= 100;
        ++number->end;
        if (const std::optional<Number> more = rest(number->end)) {
            number->value += more->value;
            number->end = more->end;
            number->article = false;
        }
        return number;
    }

    std::optional<Number> cardinal(size_t at, bool first) const
    {
        std::optional<Number> number = below1000(at, first);
        if (!number)
            return std::nullopt;
        qint64 total = 0;
        qint64 group = number->value;
        for (const auto &[name, scale] :
             {std::pair(u"billion", 1000 * million), {u"million", million}, {u"thousand", qint64(1000)}}) {
            if (group == 0 || key(number->end) != name)
                continue;
            total += group * scale;
            group = 0;
            ++number->end;
            const size_t start = key(number->end) == u"and" ? number->end + 1 : number->end;
            const std::optional<Number> more =
                start < m_parts.size() ? below1000(start, false) : std::nullopt;
            if (!more)
                continue;
            group = more->value;
            number->end = more->end;
            number->article = false;
        }
        number->value = total + group;
        return number;
    }

    // All numbers that are said without a word between them.
    std::vector<Number> run(size_t at) const
    {
        std::vector<Number> numbers;
        for (size_t next = at; next < m_parts.size();) {
            const bool oh = numbers.size() == 1 && (key(next) == u"oh" || key(next) == u"o");
            std::optional<Number> number = cardinal(oh ? next + 1 : next, numbers.empty());
            if (next > at && key(next).isEmpty())
                break;
            if (oh && (next + 1 >= m_parts.size() || !number || number->value < 1 || number->value > 9))
                break;
            if (!number)
                break;
            number->oh = oh;
            numbers.push_back(*number);
            next = number->end;
        }
        return numbers;
    }

    bool clockBefore(size_t at) const
    {
        static const QSet<QString> words{u"at"_s,     u"by"_s,    u"until"_s, u"till"_s,
                                         u"before"_s, u"after"_s, u"around"_s};
        return words.contains(keyBefore(at));
    }

    // Behind a number: what is measured, which no time of day has behind it.
    bool unitAt(size_t at) const
    {
        static const QSet<QString> units = [] {
            const QStringList words =
                u"percent per second seconds minute minutes hour hours day days week weeks month months year years page pages "
                "dollar dollars euro euros cent cents pound pounds mile miles meter meters metre metres kilometer "
                "kilometers kilometre kilometres inch inches foot feet degree degrees point points time times"_s.split(u' ');
            return QSet<QString>(words.begin(), words.end());
        }();
        return units.contains(key(at));
    }

    bool peopleAt(size_t at) const
    {
        static const QSet<QString> people{u"people"_s, u"person"_s, u"persons"_s, u"men"_s, u"women"_s, u"children"_s};
        return people.contains(key(at));
    }

    // "a.m." or "p.m." at this place, however it was heard.
    std::optional<Written> halfOfDay(size_t at) const
    {
        const QString word = key(at);
        const QString letter = word.left(1);
        if (letter != u"a" && letter != u"p")
            return std::nullopt;
        if (word == letter + u".m."_s || word == letter + u".m"_s || word == letter + u'm')
            return Written{letter + u".m."_s, at + 1};
        if (word.size() == 1 && key(at + 1) == u"m")
            return Written{letter + u".m."_s, at + 2};
        return std::nullopt;
    }

    std::optional<Written> figuresAt(size_t at) const
    {
        if (const std::optional<Written> found = telephone(at))
            return found;
        if (const std::optional<Written> found = dayOfMonth(at))
            return found;
        const std::optional<Written> time = pastHour(at);
        return time ? time : figures(at);
    }

    // A digit as it is read out: "oh" is one, too.
    int digit(size_t at, bool first) const
    {
        const QString word = first ? m_parts[at].key() : key(at);
        if (word == u"oh" || word == u"o")
            return 0;
        const int value = smallNumbers().value(word, -1);
        return value <= 9 ? value : -1;
    }

    // Seven digits and more that were read out one by one; whoever counts goes up or down by one.
    std::optional<Written> telephone(size_t at) const
    {
        constexpr qsizetype fewest = 7;
        constexpr qsizetype most = 15;
        QString text;
        bool counts = true;
        size_t end = at;
        for (int last = -1; end < m_parts.size(); ++end) {
            const int value = digit(end, end == at);
            if (value < 0)
                break;
            counts = counts && (last < 0 || std::abs(value - last) == 1);
            text += QString::number(value);
            last = value;
        }
        if (counts || text.size() < fewest || text.size() > most || m_parts[at].key().startsWith(u'o'))
            return std::nullopt;
        if (text.size() == 7)
            text.insert(3, u'-');
        else if (text.size() == 10 && !text.startsWith(u'0'))
            text.insert(6, u'-').insert(3, u'-');
        return Written{text, end};
    }

    // "June fifth", "the fifth of June"; a larger day ("twenty third") is a number.
    std::optional<Written> dayOfMonth(size_t at) const
    {
        static const QSet<QString> before{u"on"_s, u"by"_s, u"until"_s, u"since"_s, u"before"_s, u"of"_s, u"in"_s};
        const int day = ordinal(m_parts[at].key());
        if (day == 0 || !m_parts[at].lead.isEmpty())
            return std::nullopt;
        const QString month = keyBefore(at);
        // "We may second that", "they march first".
        const bool clear = (month != u"may" && month != u"march") ||
                           (at > 1 && m_parts[at - 2].trail.isEmpty() && before.contains(m_parts[at - 2].key()));
        const bool behind = isMonth(month) && clear;
        const bool ahead = key(at + 1) == u"of" && isMonth(key(at + 2));
        if (!behind && !ahead)
            return std::nullopt;
        return Written{QString::number(day) + ordinalEnding(day > 3 && day < 21 ? 0 : day % 10), at + 1};
    }

    // "five to ten", "nine or ten": the words stay together.
    bool endsSmallRange(size_t at, qint64 value) const
    {
        const QString joint = keyBefore(at);
        if (value > 20 || at < 2 || (joint != u"to" && joint != u"or"))
            return false;
        const int from = m_parts[at - 2].trail.isEmpty() ? smallNumbers().value(m_parts[at - 2].key(), -1) : -1;
        return from > 0 && from < smallestFigure;
    }

    static QString clock(qint64 hour, qint64 minute)
    {
        return u"%1:%2"_s.arg(hour).arg(minute, 2, 10, QChar(u'0'));
    }

    Written withHalfOfDay(const QString &time, size_t end) const
    {
        if (const std::optional<Written> half = halfOfDay(end))
            return {time + u' ' + half->text, half->end};
        return {time, end};
    }

    // "half past nine", "a quarter to nine", "ten past nine".
    std::optional<Written> pastHour(size_t at) const
    {
        const size_t start = m_parts[at].key() == u"a" && key(at + 1) == u"quarter" ? at + 1 : at;
        const QString word = m_parts[start].key();
        qint64 minutes = word == u"half" ? 30 : word == u"quarter" ? 15 : 0;
        size_t next = start + 1;
        if (minutes == 0) {
            const std::optional<Number> number = below100(start, true);
            if (!number || number->value % 5 != 0 || number->value == 0 || number->value > 25)
                return std::nullopt;
            minutes = number->value;
            next = number->end;
        }
        const QString direction = key(next);
        static const QSet<QString> clear{u"at"_s, u"it's"_s, u"until"_s, u"till"_s, u"by"_s};
        const bool before = direction == u"to" && word != u"half" &&
                            (word == u"quarter" ? keyBefore(at) != u"from" : clear.contains(keyBefore(at)));
        const std::vector<Number> hour = run(next + 1 < m_parts.size() ? next + 1 : m_parts.size());
        if ((direction != u"past" && !before) || hour.size() != 1 || key(next + 1).isEmpty() ||
            hour[0].value < 1 || hour[0].value > 12 || hour[0].article || unitAt(hour[0].end) || peopleAt(hour[0].end))
            return std::nullopt;
        const qint64 shown = before ? (hour[0].value + 10) % 12 + 1 : hour[0].value;
        return withHalfOfDay(clock(shown, before ? 60 - minutes : minutes), hour[0].end);
    }

    static QString digits(qint64 value)
    {
        return value < 10000 ? QString::number(value)
                             : QLocale(QLocale::English, QLocale::UnitedStates).toString(value);
    }

    static QString figure(qint64 value)
    {
        if (value >= million && value % million == 0)
            return value % (1000 * million) == 0 ? digits(value / (1000 * million)) + u" billion"_s
                                                 : digits(value / million) + u" million"_s;
        return digits(value);
    }

    // A year or a time of two numbers.
    std::optional<Written> pair(size_t at, const Number &first, const Number &second) const
    {
        const qint64 a = first.value;
        const qint64 b = second.value;
        const bool two = second.oh || (b >= 10 && b < 100);
        // "at nine thirty people came" has a time, "twenty thirty people came" has none.
        static const QSet<QString> yearly{u"in"_s, u"since"_s, u"of"_s, u"from"_s};
        const bool dated = clockBefore(at) || yearly.contains(keyBefore(at));
        if (!two || first.article || first.end != at + 1 || unitAt(second.end) || (!dated && peopleAt(second.end)))
            return std::nullopt;
        const bool clockLike = clockBefore(at) || halfOfDay(second.end).has_value();
        const bool usual = b == 15 || b == 30 || b == 45;
        if (b < 60 && ((a >= 1 && a <= 12 && ((usual && !second.oh) || clockLike)) ||
                       (a >= 13 && a <= 23 && keyBefore(at) == u"at")))
            return withHalfOfDay(clock(a, b), second.end);
        if (a >= 17 && a <= 20)
            return Written{QString::number(a * 100 + b), second.end};
        return std::nullopt;
    }

    // "point five", as many figures as were said.
    Written decimals(const QString &whole, size_t end) const
    {
        QString text;
        size_t at = end + 1;
        for (; key(end) == u"point" && small(at) >= 0 && small(at) <= 9; ++at)
            text += QString::number(small(at));
        return text.isEmpty() ? Written{whole, end} : Written{whole + u'.' + text, at};
    }

    static QString ordinalEnding(int unit)
    {
        return unit == 1 ? u"st"_s : unit == 2 ? u"nd"_s : unit == 3 ? u"rd"_s : u"th"_s;
    }

    std::optional<Written> single(size_t at, const Number &number) const
    {
        const qint64 value = number.value;
        const QString next = key(number.end);
        const bool hour = value >= 1 && value <= 12 && !number.article;
        if (hour && halfOfDay(number.end))
            return withHalfOfDay(QString::number(value), number.end);
        if (hour && next == u"o'clock")
            return Written{QString::number(value) + u" o'clock"_s, number.end + 1};
        const int unit = ordinalUnit(next);
        // "twenty seconds" and "twenty second breaks" are no ordinals, nor is what may be one of these.
        if (value >= 20 && value < 100 && value % 10 == 0 && unit > 0 &&
            (unit != 2 || key(number.end + 1) == u"of"))
            return Written{QString::number(value + unit) + ordinalEnding(unit), number.end + 1};
        Written exact = decimals(digits(value), number.end);
        const bool percent = key(exact.end) == u"percent";
        // "At one point one of them left."
        if (value == 1 && keyBefore(at) == u"at" && !unitAt(exact.end))
            exact = {digits(value), number.end};
        if (percent || (key(exact.end) == u"per" && key(exact.end + 1) == u"cent"))
            return Written{exact.text + u'%', exact.end + (percent ? 1 : 2)};
        if (exact.end > number.end)
            return exact;
        if (value < smallestFigure || number.article || endsSmallRange(at, value))
            return std::nullopt;
        return Written{figure(value), number.end};
    }

    // Nothing where no number begins; an empty text where it stays as it was said.
    std::optional<Written> figures(size_t at) const
    {
        const std::vector<Number> numbers = run(at);
        if (numbers.empty())
            return std::nullopt;
        const Written asSaid{QString(), numbers.back().end};
        if (numbers.size() == 1)
            return single(at, numbers[0]).value_or(asSaid);
        if (numbers.size() == 2) {
            if (const std::optional<Written> written = pair(at, numbers[0], numbers[1]))
                return written;
        }
        const bool clear = std::ranges::all_of(
            numbers, [](const Number &n) { return n.value >= smallestFigure && !n.article; });
        if (!clear || numbers[0].value == numbers[1].value)
            return asSaid;
        QStringList texts;
        for (const Number &number : numbers)
            texts.append(figure(number.value));
        return Written{texts.join(u' '), numbers.back().end};
    }

    const std::vector<Word> &m_words;
    std::vector<WordParts> m_parts;
};

} // namespace

std::vector<Word> withFigures(const std::vector<Word> &words)
{
    return Figures(words).rewritten();
}

} // namespace engine::english
