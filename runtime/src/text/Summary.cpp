#include "text/Summary.h"

#include "text/Tasks.h"

#include <QMap>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

constexpr size_t sentencesPerPick = 6;
constexpr size_t mostPicks = 7;
constexpr qsizetype fewestWords = 4; // of a sentence that says something on its own
constexpr size_t mostHolders = 300;  // sentences; a word that more of them hold tells nothing
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

QStringList wordsOf(const Sentence &sentence)
{
    static const QRegularExpression notWord(u"[^\\w']+"_s, QRegularExpression::UseUnicodePropertiesOption);
    return sentence.text.toLower().split(notWord, Qt::SkipEmptyParts);
}

QSet<QString> tellingWords(const Sentence &sentence)
{
    QSet<QString> telling;
    for (const QString &word : wordsOf(sentence)) {
        if (word.size() > 2 && !everydayWords().contains(word))
            telling.insert(word);
    }
    return telling;
}

// Sentences that share a word, and how much they share for their length. In order: sums in another order
// would differ.
using Ties = std::vector<QMap<size_t, double>>;

Ties tiesOf(const std::vector<QSet<QString>> &telling)
{
    QMap<QString, std::vector<size_t>> holders;
    for (size_t i = 0; i < telling.size(); ++i) {
        for (const QString &word : telling[i])
            holders[word].push_back(i);
    }
    Ties ties(telling.size());
    for (const std::vector<size_t> &sentences : std::as_const(holders)) {
        if (sentences.size() > mostHolders)
            continue;
        for (const size_t a : sentences) {
            for (const size_t b : sentences) {
                if (a != b)
                    ties[a][b] += 1 / std::log(double(1 + telling[a].size()) * double(1 + telling[b].size()));
            }
        }
    }
    return ties;
}

// A sentence counts by the sentences that it shares words with, and these by theirs: what a talk is about is
// at the middle of it. What is said again word for word counts once: people repeat "yes, of course" more
// often than what they came to say.
std::vector<double> scores(const std::vector<Sentence> &sentences)
{
    std::vector<QSet<QString>> telling;
    QSet<QString> said;
    for (const Sentence &sentence : sentences) {
        const bool skipped = said.contains(sentence.text) || wordsOf(sentence).size() < fewestWords;
        said.insert(sentence.text);
        telling.push_back(skipped ? QSet<QString>() : tellingWords(sentence));
    }
    const Ties ties = tiesOf(telling);
    std::vector<double> given(ties.size());
    for (size_t i = 0; i < ties.size(); ++i) {
        for (const double tie : ties[i])
            given[i] += tie;
    }
    std::vector<double> score(ties.size(), 1);
    for (int round = 0; round < rounds; ++round) {
        std::vector<double> next(ties.size());
        for (size_t i = 0; i < ties.size(); ++i) {
            double sum = 0;
            for (auto tie = ties[i].begin(); tie != ties[i].end(); ++tie)
                sum += score[tie.key()] * tie.value() / given[tie.key()];
            next[i] = telling[i].isEmpty() ? 0 : 1 - damping + damping * sum;
        }
        score = std::move(next);
    }
    return score;
}

} // namespace

Summary extractSummary(const std::vector<Sentence> &sentences, const QString &language)
{
    const std::vector<double> score = scores(sentences);
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
