#include "text/CleanText.h"

#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

constexpr qint64 sentencePauseMs = 600;
constexpr qint64 paragraphPauseMs = 2000;
constexpr qint64 shortParagraphPauseMs = 900;
constexpr int longParagraph = 8; // sentences, after which a shorter pause starts a new paragraph

QString capitalised(QString word)
{
    if (!word.isEmpty())
        word[0] = word[0].toUpper();
    return word;
}

// English words that have a capital wherever they stand.
bool alwaysCapital(const QString &word)
{
    static const QSet<QString> words{
        u"i"_s,         u"i'm"_s,       u"i'll"_s,     u"i'd"_s,     u"i've"_s,     u"monday"_s,
        u"tuesday"_s,   u"wednesday"_s, u"thursday"_s, u"friday"_s,  u"saturday"_s, u"sunday"_s,
        u"january"_s,   u"february"_s,  u"april"_s,    u"june"_s,    u"july"_s,     u"august"_s,
        u"september"_s, u"october"_s,   u"november"_s, u"december"_s};
    return words.contains(word);
}

// Some recognisers give bare words, others whole sentences. One that uses commas or capitals is of the second
// kind.
bool hasPunctuation(const std::vector<Segment> &segments)
{
    const auto punctuated = [](const Word &word) {
        return std::ranges::any_of(word.text,
                                   [](QChar c) { return c.isUpper() || u",?!，。？！،؟"_s.contains(c); });
    };
    return std::ranges::any_of(segments, [&](const Segment &segment) {
        return segment.words && std::ranges::any_of(*segment.words, punctuated);
    });
}

bool endsSentence(const QString &word)
{
    qsizetype last = word.size() - 1;
    while (last > 0 && u"\"'”’»)]"_s.contains(word[last]))
        --last;
    return last >= 0 && u".?!…。？！؟"_s.contains(word[last]);
}

class SentenceBuilder
{
public:
    explicit SentenceBuilder(bool punctuated)
        : m_punctuated(punctuated)
    {
    }

    void add(const Word &word)
    {
        const qint64 pause = m_lastEnd < 0 ? 0 : word.startMs - m_lastEnd;
        if (!m_current.text.isEmpty() && pause >= (m_punctuated ? paragraphPauseMs : sentencePauseMs))
            finishSentence();
        if (m_current.text.isEmpty())
            startSentence(word, pause);
        else
            m_current.text +=
                u' ' + (!m_punctuated && alwaysCapital(word.text) ? capitalised(word.text) : word.text);
        m_current.endMs = m_lastEnd = word.endMs;
        if (m_punctuated && endsSentence(word.text))
            finishSentence();
    }

    std::vector<Sentence> finish()
    {
        if (!m_current.text.isEmpty())
            finishSentence();
        return std::move(m_sentences);
    }

private:
    void startSentence(const Word &word, qint64 pause)
    {
        const bool longEnough = m_inParagraph >= longParagraph && pause >= shortParagraphPauseMs;
        m_current.startsParagraph = m_sentences.empty() || pause >= paragraphPauseMs || longEnough;
        m_inParagraph = m_current.startsParagraph ? 1 : m_inParagraph + 1;
        m_current.startMs = word.startMs;
        m_current.text = m_punctuated ? word.text : capitalised(word.text);
    }

    void finishSentence()
    {
        if (!m_punctuated)
            m_current.text += u'.';
        m_sentences.push_back(std::exchange(m_current, {}));
    }

    bool m_punctuated;
    std::vector<Sentence> m_sentences;
    Sentence m_current;
    qint64 m_lastEnd = -1;
    int m_inParagraph = 0;
};

} // namespace

std::vector<Sentence> cleanSentences(const std::vector<Segment> &segments)
{
    SentenceBuilder builder(hasPunctuation(segments));
    for (const Segment &segment : segments) {
        if (!segment.words)
            continue;
        for (const Word &word : *segment.words)
            builder.add(word);
    }
    return builder.finish();
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
