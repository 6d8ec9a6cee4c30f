#include "text/CleanText.h"

#include "text/EnglishText.h"
#include "text/Hesitation.h"
#include "text/Scripts.h"
#include "text/WordParts.h"

#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

constexpr qint64 sentencePauseMs = 600;
constexpr qint64 paragraphPauseMs = 2000;
constexpr qint64 shortParagraphPauseMs = 900;
constexpr size_t mostWordsPerMark = 60;
constexpr int longParagraph = 8; // sentences, after which a shorter pause starts a new paragraph

// What one person says without another between, in one piece of time.
struct Stretch
{
    QString speaker;
    std::vector<Word> words;
};

std::vector<Stretch> stretchesOf(const std::vector<Segment> &segments)
{
    std::vector<Stretch> stretches;
    for (const Segment &segment : segments) {
        if (!segment.words || segment.words->empty())
            continue;
        if (stretches.empty() || stretches.back().speaker != segment.speaker)
            stretches.push_back({segment.speaker, {}});
        std::vector<Word> &words = stretches.back().words;
        words.insert(words.end(), segment.words->begin(), segment.words->end());
    }
    return stretches;
}

// A recogniser that writes full stops itself knows better than the pauses where sentences end.
bool hasMarks(const std::vector<Stretch> &stretches)
{
    size_t words = 0;
    size_t ends = 0;
    for (const Stretch &stretch : stretches) {
        words += stretch.words.size();
        ends += size_t(std::ranges::count_if(
            stretch.words, [](const Word &word) { return WordParts(word.text).endsSentence(); }));
    }
    return ends > 0 && ends * mostWordsPerMark >= words;
}

bool hasCapitals(const std::vector<Stretch> &stretches)
{
    const auto isUpper = [](QChar c) { return c.isUpper(); };
    return std::ranges::any_of(stretches, [&](const Stretch &stretch) {
        return std::ranges::any_of(stretch.words, [&](const Word &word) { return std::ranges::any_of(word.text, isUpper); });
    });
}

// How the recogniser writes.
struct Script
{
    QString language;
    bool marks = false;
    bool capitals = false;

    Script(const std::vector<Stretch> &stretches, const QString &of)
        : language(mainLanguage(of))
        , marks(hasMarks(stretches))
        , capitals(hasCapitals(stretches))
    {
    }
};

// Whether its point is a part of the word: "Dr.", "J.", and "3." where that means the third.
bool isShortened(const WordParts &word, const QString &language)
{
    static const QSet<QString> shortened{u"dr"_s, u"prof"_s, u"mr"_s, u"mrs"_s, u"ms"_s, u"st"_s,  u"nr"_s,  u"hr"_s,
                                         u"fr"_s, u"bzw"_s,  u"ca"_s, u"vs"_s,  u"sr"_s, u"sra"_s, u"mme"_s, u"г"_s,
                                         u"ул"_s, u"вул"_s,  u"им"_s, u"ім"_s};
    static const QSet<QString> withOrdinals{u"de"_s, u"da"_s, u"nb"_s, u"nn"_s, u"no"_s, u"fi"_s, u"et"_s, u"lv"_s, u"pl"_s, u"cs"_s,
                                            u"sk"_s, u"hu"_s, u"sl"_s, u"hr"_s, u"sr"_s, u"bs"_s, u"tr"_s, u"is"_s, u"lb"_s};
    constexpr qsizetype mostFigures = 2;
    if (word.trail != u".")
        return false;
    const QString key = word.key();
    const bool figures = !key.isEmpty() && std::ranges::all_of(key, [](QChar c) { return c.isDigit(); });
    if (figures)
        return key.size() <= mostFigures && withOrdinals.contains(language);
    const bool initial = key.size() == 1 && key[0].isLetter() && word.core[0].isUpper() && key != u"i";
    return initial || shortened.contains(key);
}

// Whether the recogniser's marks end a sentence between two words. Whoever writes capitals has one at each beginning.
bool marksEnd(const QString &word, const QString &next, const Script &script)
{
    const WordParts parts(word);
    if (!parts.endsSentence())
        return false;
    const QString core = SignedWord(next).core;
    const bool goesOn = script.capitals && !core.isEmpty() && core.front().isLower();
    return !goesOn && !isShortened(parts, script.language);
}

std::vector<std::vector<Word>> sentencesOf(const std::vector<Word> &words, const Script &script)
{
    std::vector<std::vector<Word>> sentences;
    for (size_t i = 0; i < words.size(); ++i) {
        const qint64 pause = i > 0 ? words[i].startMs - words[i - 1].endMs : 0;
        const bool begins =
            i == 0 || (script.marks ? marksEnd(words[i - 1].text, words[i].text, script) || pause >= paragraphPauseMs
                                    : pause >= sentencePauseMs);
        if (begins)
            sentences.emplace_back();
        sentences.back().push_back(words[i]);
    }
    return sentences;
}

// But for words such as "iPhone".
QString capitalised(QString text)
{
    const auto first = std::ranges::find_if(text, [](QChar c) { return c.isLetterOrNumber(); });
    if (first != text.end() && (first + 1 == text.end() || !(first + 1)->isUpper()))
        *first = first->toTitleCase();
    return text;
}

// Without what leads on to more words, such as a comma; a ";" may be a Greek question mark.
QString withoutJoint(QString text, const QString &language)
{
    const QString joints = u",،，、:：-–—"_s + (language == u"el" ? QString() : u";"_s);
    const QString whole = text;
    while (!text.isEmpty() && (joints.contains(text.back()) || text.back() == u' '))
        text.chop(1);
    return text.isEmpty() ? whole : text;
}

// With a full stop, unless there is one ("at nine a.m.").
QString stopped(const QString &text)
{
    return text.endsWith(u'.') || text.endsWith(u';') ? text : text + fullStopFor(text);
}

QString joined(const QStringList &texts)
{
    QString text;
    for (const QString &next : texts)
        text += (text.isEmpty() ? QString() : jointBetween(text, next)) + next;
    return text;
}

QString textOf(const std::vector<Word> &words, const QString &language)
{
    const bool english = isEnglish(language);
    const QStringList texts = textsOf(words);
    const QString text = capitalised(joined(english ? english::withCapitals(texts) : texts));
    if (WordParts(texts.back()).endsSentence())
        return text;
    const QString said = withoutJoint(text, language);
    return english && english::asks(texts) ? said + u'?' : stopped(said);
}

class Paragraphs
{
public:
    // Appends a sentence; of another speaker than the last one's, it starts a paragraph.
    void add(const std::vector<Word> &words, const QString &text, const QString &speaker)
    {
        const bool newSpeaker = !m_sentences.empty() && m_sentences.back().speaker != speaker;
        const qint64 pause = m_sentences.empty() ? 0 : words.front().startMs - m_sentences.back().endMs;
        const bool longEnough = m_inParagraph >= longParagraph && pause >= shortParagraphPauseMs;
        const bool starts = m_sentences.empty() || pause >= paragraphPauseMs || longEnough || newSpeaker;
        m_inParagraph = starts ? 1 : m_inParagraph + 1;
        m_sentences.push_back({text, words.front().startMs, words.back().endMs, starts, speaker});
    }

    std::vector<Sentence> take() { return std::move(m_sentences); }

private:
    std::vector<Sentence> m_sentences;
    int m_inParagraph = 0;
};

// Without what was said only to look for words.
std::vector<Word> toThePoint(const std::vector<Word> &words, const QString &language)
{
    return isEnglish(language) ? english::withoutStammers(english::withoutFillers(words)) : withoutHesitation(words, language);
}

std::vector<Sentence> sentencesFrom(const std::vector<Stretch> &stretches, const QString &language, bool rewrite)
{
    const bool figures = rewrite && isEnglish(language);
    const Script script(stretches, language);
    Paragraphs paragraphs;
    for (const Stretch &stretch : stretches) {
        const std::vector<Word> words = rewrite ? toThePoint(stretch.words, language) : stretch.words;
        for (const std::vector<Word> &said : sentencesOf(words, script))
            paragraphs.add(said, textOf(figures ? english::withFigures(said) : said, script.language), stretch.speaker);
    }
    return paragraphs.take();
}

} // namespace

QString mainLanguage(const QString &language)
{
    return language.section(u'-', 0, 0).section(u'_', 0, 0).toLower();
}

bool isEnglish(const QString &language)
{
    return mainLanguage(language) == u"en";
}

std::vector<Sentence> cleanSentences(const std::vector<Segment> &segments, const QString &language)
{
    const std::vector<Stretch> stretches = stretchesOf(segments);
    std::vector<Sentence> sentences = sentencesFrom(stretches, language, true);
    // Whoever said nothing but "um" said that.
    return sentences.empty() ? sentencesFrom(stretches, language, false) : sentences;
}

std::vector<Segment> asLines(std::vector<Segment> segments, const QString &language)
{
    const auto hasCapitals = [](const Segment &segment) {
        return std::ranges::any_of(segment.text(), [](QChar c) { return c.isUpper(); });
    };
    if (std::ranges::any_of(segments, hasCapitals))
        return segments;
    for (Segment &segment : segments) {
        if (!segment.words || segment.words->empty())
            continue;
        std::vector<Word> &words = *segment.words;
        const QStringList texts = isEnglish(language) ? english::withCapitals(textsOf(words)) : textsOf(words);
        std::ranges::transform(words, texts, words.begin(), [](Word word, const QString &text) {
            word.text = text;
            return word;
        });
        words.front().text = capitalised(words.front().text);
    }
    return segments;
}

QString plainText(const std::vector<Segment> &segments)
{
    QString text;
    for (const Segment &segment : segments) {
        if (const QString line = segment.text(); !line.isEmpty())
            text += line + u'\n';
    }
    return text;
}

QString paragraphs(const std::vector<Sentence> &sentences)
{
    QString text;
    for (const Sentence &sentence : sentences) {
        if (!text.isEmpty())
            text += sentence.startsParagraph ? u"\n\n"_s : jointBetween(text, sentence.text);
        text += sentence.text;
    }
    return text.isEmpty() ? text : text + u'\n';
}

} // namespace engine
