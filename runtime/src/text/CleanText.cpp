#include "text/CleanText.h"

#include "text/EnglishText.h"
#include "text/WordParts.h"

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

std::vector<std::vector<Word>> sentencesOf(const std::vector<Word> &words, bool marks)
{
    std::vector<std::vector<Word>> sentences;
    for (size_t i = 0; i < words.size(); ++i) {
        const qint64 pause = i > 0 ? words[i].startMs - words[i - 1].endMs : 0;
        const bool begins =
            i == 0 || (marks ? WordParts(words[i - 1].text).endsSentence() || pause >= paragraphPauseMs
                             : pause >= sentencePauseMs);
        if (begins)
            sentences.emplace_back();
        sentences.back().push_back(words[i]);
    }
    return sentences;
}

QString capitalised(QString text)
{
    const auto first = std::ranges::find_if(text, [](QChar c) { return c.isLetterOrNumber(); });
    if (first != text.end())
        *first = first->toUpper();
    return text;
}

// With a full stop, unless there is one ("at nine a.m.") or what may be a Greek question mark.
QString stopped(QString text)
{
    const auto endsWith = [&](QStringView signs) { return !text.isEmpty() && signs.contains(text.back()); };
    if (endsWith(u",،，、"))
        text.chop(1);
    return endsWith(u".;") ? text : text + u'.';
}

QString textOf(const std::vector<Word> &words, bool english)
{
    const QStringList texts = textsOf(words);
    const QString text = capitalised((english ? english::withCapitals(texts) : texts).join(u' '));
    if (WordParts(texts.back()).endsSentence())
        return text;
    if (english && english::asks(texts))
        return text + u'?';
    return stopped(text);
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

std::vector<Sentence> sentencesFrom(const std::vector<Stretch> &stretches, bool english)
{
    const bool marks = hasMarks(stretches);
    Paragraphs paragraphs;
    for (const Stretch &stretch : stretches) {
        const std::vector<Word> words =
            english ? english::withoutStammers(english::withoutFillers(stretch.words)) : stretch.words;
        for (const std::vector<Word> &said : sentencesOf(words, marks)) {
            paragraphs.add(said, textOf(english ? english::withFigures(said) : said, english), stretch.speaker);
        }
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
    std::vector<Sentence> sentences = sentencesFrom(stretches, isEnglish(language));
    // Whoever said nothing but "um" said that.
    return sentences.empty() ? sentencesFrom(stretches, false) : sentences;
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
            text += sentence.startsParagraph ? u"\n\n"_s : u" "_s;
        text += sentence.text;
    }
    return text.isEmpty() ? text : text + u'\n';
}

} // namespace engine
