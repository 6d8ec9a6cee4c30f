#include "text/Words.h"

namespace engine {

namespace {

constexpr size_t mostComparisons = 4'000'000;

} // namespace

bool isBlank(QChar character)
{
    constexpr QChar nextLine(0x85);
    constexpr QChar byteOrderMark(0xfeff);
    return (character.isSpace() && character != nextLine) || character == byteOrderMark;
}

QStringList wordsOf(QStringView text)
{
    QStringList words;
    qsizetype start = -1;
    for (qsizetype at = 0; at <= text.size(); ++at) {
        const bool inside = at < text.size() && !isBlank(text[at]);
        if (inside && start < 0)
            start = at;
        if (!inside && start >= 0) {
            words.append(text.sliced(start, at - start).toString());
            start = -1;
        }
    }
    return words;
}

QString trimmedText(QStringView text)
{
    while (!text.isEmpty() && isBlank(text.front()))
        text = text.sliced(1);
    while (!text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    return text.toString();
}

std::vector<std::pair<size_t, size_t>> commonWords(const QStringList &a, const QStringList &b)
{
    std::vector<std::pair<size_t, size_t>> common;
    auto fromA = size_t(a.size());
    auto fromB = size_t(b.size());
    size_t front = 0;
    while (front < fromA && front < fromB && a[qsizetype(front)] == b[qsizetype(front)]) {
        common.emplace_back(front, front);
        ++front;
    }
    while (fromA > front && fromB > front && a[qsizetype(fromA) - 1] == b[qsizetype(fromB) - 1]) {
        --fromA;
        --fromB;
    }
    const size_t rows = fromA - front;
    const size_t columns = fromB - front;
    if (rows > 0 && columns > 0 && rows * columns <= mostComparisons) {
        // longest[i][j]: how many words the parts behind i and j have in common.
        const size_t width = columns + 1;
        std::vector<quint32> longest((rows + 1) * width);
        const auto same = [&](size_t i, size_t j) {
            return a[qsizetype(front + i)] == b[qsizetype(front + j)];
        };
        for (size_t i = rows; i-- > 0;) {
            for (size_t j = columns; j-- > 0;)
                longest[i * width + j] =
                    same(i, j) ? longest[(i + 1) * width + j + 1] + 1
                               : std::max(longest[(i + 1) * width + j], longest[i * width + j + 1]);
        }
        for (size_t i = 0, j = 0; i < rows && j < columns;) {
            if (same(i, j))
                common.emplace_back(front + i++, front + j++);
            else if (longest[(i + 1) * width + j] >= longest[i * width + j + 1])
                ++i;
            else
                ++j;
        }
    }
    for (; fromA < size_t(a.size()); ++fromA, ++fromB)
        common.emplace_back(fromA, fromB);
    return common;
}

} // namespace engine
