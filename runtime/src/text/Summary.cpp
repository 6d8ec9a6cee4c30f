#include "text/Summary.h"

#include "text/Scripts.h"
#include "text/Tasks.h"

#include <QMap>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <map>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

constexpr size_t sentencesPerPick = 6;
constexpr size_t mostPicks = 7;
constexpr qsizetype fewestWords = 4; // of a sentence that says something on its own
constexpr size_t mostHolders = 300;  // sentences; a word that more of them hold tells nothing
constexpr size_t fewestHolders = 5;  // likewise, where everyday words are told by their being in every tenth alone
constexpr int rounds = 30;           // after which the order does not change any more
constexpr double damping = 0.85;

const QSet<QString> &everydayWords()
{
    static const QSet<QString> words = [] {
        const QString list =
            u"a about after all also an and any are as at be because been but by can could did do does "
            "for from get go going got had has have he her here him his how i i'm if in into is it it's "
            "its just know like me more most my no not now of oh on one only or our out really right said "
            "say see she should so some than that that's the their them then there these they thing "
            "things think this those to too uh um up us very was we well were what when where which who "
            "why will with would yeah yes you your"_s;
        const QStringList split = list.split(u' ');
        return QSet<QString>(split.begin(), split.end());
    }();
    return words;
}

// Of Chinese and Japanese, Chinese letters in pairs, since most words are pairs of them.
QStringList wordsOf(const Sentence &sentence)
{
    static const QRegularExpression notWord(u"[^\\w']+"_s, QRegularExpression::UseUnicodePropertiesOption);
    QStringList words;
    for (const QString &unbroken : sentence.text.toLower().split(notWord, Qt::SkipEmptyParts)) {
        const QStringList pieces = piecesOf(unbroken);
        for (qsizetype i = 0; i < pieces.size(); ++i) {
            const bool one = isTellingPiece(pieces[i]) && pieces[i].size() == 1;
            if (!one)
                words.append(pieces[i]);
            else if (i + 1 < pieces.size() && isTellingPiece(pieces[i + 1]))
                words.append(pieces[i] + pieces[i + 1]);
        }
    }
    return words;
}

QSet<QString> tellingWords(const Sentence &sentence)
{
    QSet<QString> telling;
    for (const QString &word : wordsOf(sentence)) {
        if ((word.size() > 2 || isTellingPiece(word)) && !everydayWords().contains(word))
            telling.insert(word);
    }
    return telling;
}

// Which sentences are tied by a word that they share. A tie is worth the less the longer both are. Ties are never
// listed, since there are far more of them than sentences: what comes to a sentence from those of one length is
// counted in one go.
class Ties
{
public:
    Ties(const std::vector<QSet<QString>> &telling, size_t most)
    {
        QMap<QString, std::vector<size_t>> holders; // in order: sums in another order would differ
        for (size_t i = 0; i < telling.size(); ++i) {
            m_lengths.push_back(size_t(telling[i].size()));
            for (const QString &word : telling[i])
                holders[word].push_back(i);
        }
        for (std::vector<size_t> &sentences : holders) {
            if (sentences.size() > 1 && sentences.size() <= most)
                m_holders.push_back(std::move(sentences));
        }
    }

    // For each sentence the sum, over all that it is tied to, of the tie's worth times what these have.
    std::vector<double> spread(const std::vector<double> &had) const
    {
        std::vector<double> got(had.size());
        for (const std::vector<size_t> &sentences : m_holders) {
            std::map<size_t, double> hadByLength;
            for (const size_t sentence : sentences)
                hadByLength[m_lengths[sentence]] += had[sentence];
            std::map<size_t, double> gotByLength;
            for (const auto &[length, unused] : hadByLength) {
                for (const auto &[other, sum] : hadByLength)
                    gotByLength[length] += sum * worth(length, other);
            }
            for (const size_t sentence : sentences) {
                const size_t length = m_lengths[sentence];
                got[sentence] += gotByLength[length] - had[sentence] * worth(length, length);
            }
        }
        return got;
    }

private:
    static double worth(size_t length, size_t other)
    {
        return 1 / std::log(double(1 + length) * double(1 + other));
    }

    std::vector<size_t> m_lengths; // in telling words, of each sentence
    std::vector<std::vector<size_t>> m_holders; // sentences of one word
};

// A sentence counts by the sentences that it shares words with, and these by theirs: what a talk is about is
// at the middle of it. What is said again word for word counts once: people repeat "yes, of course" more
// often than what they came to say.
std::vector<double> scores(const std::vector<Sentence> &sentences, const QString &language)
{
    std::vector<QSet<QString>> telling;
    QSet<QString> said;
    for (const Sentence &sentence : sentences) {
        const bool skipped = said.contains(sentence.text) || wordsOf(sentence).size() < fewestWords;
        said.insert(sentence.text);
        telling.push_back(skipped ? QSet<QString>() : tellingWords(sentence));
    }
    // Everyday words are listed for English alone.
    const size_t common = isEnglish(language) ? mostHolders : std::max(fewestHolders, sentences.size() / 10);
    const Ties ties(telling, std::min(common, mostHolders));
    std::vector<double> score(telling.size(), 1);
    const std::vector<double> given = ties.spread(score);
    for (int round = 0; round < rounds; ++round) {
        for (size_t i = 0; i < score.size(); ++i)
            score[i] = given[i] > 0 ? score[i] / given[i] : 0;
        const std::vector<double> got = ties.spread(score);
        for (size_t i = 0; i < score.size(); ++i)
            score[i] = telling[i].isEmpty() ? 0 : 1 - damping + damping * got[i];
    }
    return score;
}

} // namespace

Summary extractSummary(const std::vector<Sentence> &sentences, const QString &language)
{
    const std::vector<double> score = scores(sentences, language);
    std::vector<size_t> order(sentences.size());
    for (size_t i = 0; i < order.size(); ++i)
        order[i] = i;
    std::ranges::stable_sort(order, [&](size_t a, size_t b) { return score[a] > score[b]; });
    order.resize(std::min({order.size(), mostPicks, sentences.size() / sentencesPerPick + 1}));
    std::ranges::sort(order);

    Summary summary;
    for (const size_t index : order)
        summary.sentences.append(sentences[index].text);
    summary.tasks = extractTasks(sentences, language);
    if (!tellsTasks(language))
        summary.missing.append(remark(u"Without a text model, tasks are not looked for in this language."_s));
    return summary;
}

QString filled(const Remark &remark)
{
    QString text;
    qsizetype end = 0;
    for (const QString &value : remark.values) {
        const qsizetype place = remark.format.indexOf("%@"_L1, end);
        if (place < 0)
            break;
        text += remark.format.sliced(end, place - end) + value;
        end = place + 2;
    }
    return text + remark.format.sliced(end);
}

} // namespace engine
