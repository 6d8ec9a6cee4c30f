#include "Fuzz.h"

#include "output/Formats.h"
#include "text/CleanFix.h"
#include "text/Words.h"

using namespace Qt::StringLiterals;
using namespace engine;

namespace {

/// Every word of the text has its time, and times rise within the line.
void requireLine(const Line &line)
{
    require(textsOf(line.words) == wordsOf(line.text));
    qint64 reached = line.startMs;
    for (const Word &word : line.words) {
        require(word.startMs >= reached && word.endMs >= word.startMs);
        reached = word.endMs;
    }
    require(line.endMs >= reached);
}

/// A line as it comes from the recogniser: words of 100 ms, with pauses.
Line spoken(const QString &text, qint64 startMs)
{
    Segment segment{0, startMs, startMs + 50, std::vector<Word>{}};
    for (const QString &word : wordsOf(text)) {
        segment.words->push_back({word, segment.endMs, segment.endMs + 100});
        segment.endMs += 150;
    }
    return linesFrom({segment}).front();
}

QString withoutBlanks(const QString &text)
{
    return wordsOf(text).join(QString());
}

/// Cuts behind so many characters, and joins again to see that nothing is lost.
std::pair<Line, Line> requireCut(const Line &line, qsizetype characters)
{
    const QList<uint> all = line.text.toUcs4();
    const qsizetype place = QString::fromUcs4(reinterpret_cast<const char32_t *>(all.constData()),
                                              std::min(characters, all.size()))
                                .size();
    const auto [first, second] = cut(line, place);
    requireLine(first);
    requireLine(second);
    require(first.startMs == line.startMs && first.endMs <= second.startMs && second.endMs == line.endMs);
    const Line again = joined(first, second);
    requireLine(again);
    require(again.startMs == line.startMs && again.endMs == line.endMs);
    require(withoutBlanks(again.text) == withoutBlanks(line.text));
    const size_t more = again.words.size() - line.words.size();
    require(more <= 1 && (more == 1 || again.words == line.words));
    return {first, second};
}

class Transcribed
{
public:
    void change(const QByteArray &row)
    {
        const QString text = QString::fromUtf8(row.mid(3));
        const qsizetype number = row.size() > 1 ? uchar(row[1]) : 0;
        const qsizetype characters = row.size() > 2 ? uchar(row[2]) : 0;
        if (row.startsWith('c'))
            m_clean = text;
        else if (row.startsWith('l') || m_lines.empty())
            add(text);
        else if (row.startsWith('s'))
            split(number, characters);
        else if (row.startsWith('j'))
            join(number);
        else
            edit(number, text);
        qint64 reached = 0;
        for (const Line &line : m_lines) {
            requireLine(line);
            require(line.startMs >= reached);
            reached = line.endMs;
        }
    }

    ~Transcribed()
    {
        for (const auto file : {transcriptFile, subRipFile, webVttFile})
            require(file(m_lines).isValidUtf8());
    }

private:
    size_t at(qsizetype number) const { return size_t(number) % m_lines.size(); }

    void add(const QString &text)
    {
        if (!wordsOf(text).isEmpty())
            m_lines.push_back(spoken(text, m_lines.empty() ? 0 : m_lines.back().endMs));
    }

    void split(qsizetype number, qsizetype characters)
    {
        const auto line = m_lines.begin() + std::ptrdiff_t(at(number));
        const auto [first, second] = requireCut(*line, characters);
        *line = first;
        m_lines.insert(line + 1, second);
    }

    void join(qsizetype number)
    {
        if (const size_t lower = at(number); lower > 0) {
            m_lines[lower - 1] = joined(m_lines[lower - 1], m_lines[lower]);
            m_lines.erase(m_lines.begin() + std::ptrdiff_t(lower));
        }
    }

    void edit(qsizetype number, const QString &text)
    {
        Line &line = m_lines[at(number)];
        require(withText(line, line.text) == line);
        require(withCorrectedLine(m_clean, m_lines, at(number), line.text) == m_clean);
        m_clean = withCorrectedLine(m_clean, m_lines, at(number), text);
        line = withText(line, text);
    }

    std::vector<Line> m_lines;
    QString m_clean;
};

} // namespace

/// A person at work on a transcript, one change a row. The first letter tells which: a new line, the clean
/// text, a split, a join; anything else is an edit. The two bytes behind it are the line's number and the
/// place of a split.
void readInput(const QByteArray &bytes)
{
    Transcribed transcribed;
    for (const QByteArray &row : bytes.split('\n'))
        transcribed.change(row);
}
