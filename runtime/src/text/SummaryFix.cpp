#include "text/SummaryFix.h"

#include "text/CleanFix.h"
#include "text/WordParts.h"

#include <QRegularExpression>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

constexpr size_t linesAround = 12; // of which a sentence may hold parts
constexpr double mostOfIt = 0.8;
constexpr qsizetype mostHesitation = 8; // words, beside as many as the text has

// A line among its neighbours.
struct Neighbourhood
{
    std::vector<Line> lines;
    size_t line;

    Neighbourhood(const std::vector<Line> &all, size_t number)
    {
        const size_t from = number - std::min(number, linesAround);
        const size_t to = std::min(all.size(), number + linesAround + 1);
        lines.assign(all.begin() + std::ptrdiff_t(from), all.begin() + std::ptrdiff_t(to));
        line = number - from;
    }

    // Whether the text was picked from around the line, and holds words of it.
    bool touches(const QString &text) const
    {
        const WordsFound found = wordsFound(text, lines, line);
        return isPicked(found) && found.inLine > 0;
    }

    // Whether it was picked from the line.
    bool holds(const QString &text) const
    {
        const WordsFound found = wordsFound(text, lines, line);
        return isPicked(found) && 2 * found.inLine > found.all;
    }

private:
    static bool isPicked(const WordsFound &found)
    {
        return double(found.all) >= mostOfIt * double(found.ofText) && found.spread <= 2 * found.ofText + mostHesitation;
    }
};

// What one person says in a task: "Anna: Can you call? Bo: On Monday." has two of these.
struct Utterance
{
    QString speaker; // empty: none is named
    QString text;
};

std::vector<Utterance> utterancesIn(const QString &text, const QStringList &speakers)
{
    std::vector<Utterance> all{{}};
    for (qsizetype at = 0; at < text.size();) {
        const bool begins = at == 0 || (text[at - 1] == u' ' && endsSentence(QStringView(text).left(at - 1).right(1)));
        const auto named = std::ranges::find_if(speakers, [&](const QString &name) {
            return begins && QStringView(text).sliced(at).startsWith(QString(name + u": "_s));
        });
        if (named == speakers.end()) {
            all.back().text += text[at++];
            continue;
        }
        if (at > 0) {
            all.back().text.chop(1);
            all.push_back({});
        }
        all.back().speaker = *named;
        at += named->size() + 2;
    }
    return all;
}

QString inOne(const std::vector<Utterance> &all)
{
    QString text;
    for (const Utterance &one : all) {
        if (!text.isEmpty())
            text += u' ';
        if (!one.speaker.isEmpty())
            text += one.speaker + u": "_s;
        text += one.text;
    }
    return text;
}

// The texts after `change` has had each utterance in them.
template <typename Change> QStringList changed(QStringList texts, const QStringList &speakers, Change change)
{
    for (QString &text : texts) {
        std::vector<Utterance> all = utterancesIn(text, speakers);
        std::ranges::for_each(all, change);
        text = inOne(all);
    }
    return texts;
}

QRegularExpression asWord(const QString &name)
{
    const QString noLetter = u"[\\p{L}\\p{M}\\p{N}_])"_s;
    return QRegularExpression(u"(?<!"_s + noLetter + QRegularExpression::escape(name) + u"(?!"_s + noLetter);
}

bool meansOnlyTheSpeaker(const QString &name, const std::vector<Line> &lines)
{
    static const QRegularExpression ours(u"^Speaker \\d+$"_s);
    if (ours.match(name).hasMatch())
        return true;
    QRegularExpression word = asWord(name);
    word.setPatternOptions(QRegularExpression::CaseInsensitiveOption);
    return std::ranges::none_of(lines, [&](const Line &line) { return word.match(line.text).hasMatch(); });
}

} // namespace

QStringList lineCorrected(QStringList texts, const std::vector<Line> &lines, size_t line, const QString &corrected)
{
    const Neighbourhood near(lines, line);
    return changed(std::move(texts), speakersOf(lines), [&](Utterance &one) {
        if (near.touches(one.text))
            one.text = withCorrectedLine(one.text, near.lines, near.line, corrected);
    });
}

QStringList lineGiven(QStringList tasks, const std::vector<Line> &lines, size_t line, const QString &speaker)
{
    const Neighbourhood near(lines, line);
    return changed(std::move(tasks), speakersOf(lines), [&](Utterance &one) {
        if (one.speaker == lines[line].speaker && near.holds(one.text))
            one.speaker = speaker;
    });
}

QStringList speakerRenamed(QStringList texts, const std::vector<Line> &lines, const QString &oldName,
                           const QString &newName)
{
    if (!meansOnlyTheSpeaker(oldName, lines)) {
        return changed(std::move(texts), {oldName}, [&](Utterance &one) {
            if (one.speaker == oldName)
                one.speaker = newName;
        });
    }
    const QRegularExpression word = asWord(oldName);
    for (QString &text : texts) {
        // Backslashes in a name would stand for what was found.
        for (QRegularExpressionMatch match = word.match(text); match.hasMatch();
             match = word.match(text, match.capturedStart() + newName.size()))
            text.replace(match.capturedStart(), match.capturedLength(), newName);
    }
    return texts;
}

} // namespace engine
