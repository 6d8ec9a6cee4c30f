#include "speakers/Grouping.h"

#include <algorithm>
#include <limits>
#include <numeric>

namespace engine {

namespace {

constexpr int cutEvery = 10;

struct Cut
{
    int at = 0;
    double difference = 0;
};

// The best place to cut a run; a difference of 0 or less when it is one voice.
Cut bestCut(const Cepstra &frames, Run run, const VoiceMeasure &measure, int least)
{
    Moments before;
    Moments after;
    after.add(frames.middleCols(run.first, run.length()));
    Cut best{run.first, -std::numeric_limits<double>::infinity()};
    for (int at = run.first; at + cutEvery <= run.end; at += cutEvery) {
        if (at - run.first >= least && run.end - at >= least) {
            const double difference = measure.difference(before, after);
            if (difference > best.difference)
                best = {at, difference};
        }
        Moments step;
        step.add(frames.middleCols(at, cutEvery));
        before += step;
        after -= step;
    }
    return best;
}

// Differences between every two groups, and for each group the nearest one behind it.
class Distances
{
public:
    Distances(const std::vector<Moments> &groups, const VoiceMeasure &measure, const std::function<void()> &check)
        : m_groups(groups)
        , m_measure(measure)
        , m_table(place(0, groups.size()))
        , m_nearest(groups.size())
        , m_gone(groups.size())
    {
        for (size_t a = 0; a < groups.size(); ++a) {
            check();
            for (size_t b = a + 1; b < groups.size(); ++b)
                take(a, b);
            findNearest(a);
        }
    }

    // The two groups that are most alike; the same one twice when there is only one.
    std::pair<size_t, size_t> closest() const
    {
        std::pair<size_t, size_t> best{0, 0};
        float least = std::numeric_limits<float>::infinity();
        for (size_t a = 0; a < m_groups.size(); ++a) {
            if (!m_gone[a] && m_nearest[a] != a && at(a, m_nearest[a]) < least) {
                least = at(a, m_nearest[a]);
                best = {a, m_nearest[a]};
            }
        }
        return best;
    }

    float at(size_t a, size_t b) const { return m_table[place(std::min(a, b), std::max(a, b))]; }

    // After b went into a.
    void joined(size_t a, size_t b)
    {
        m_gone[b] = true;
        for (size_t other = 0; other < m_groups.size(); ++other) {
            if (!m_gone[other] && other != a)
                take(std::min(a, other), std::max(a, other));
        }
        for (size_t group = 0; group < m_groups.size(); ++group) {
            if (m_gone[group])
                continue;
            if (group == a || m_nearest[group] == a || m_nearest[group] == b)
                findNearest(group);
            else if (group < a && at(group, a) < at(group, m_nearest[group]))
                m_nearest[group] = a;
        }
    }

private:
    // Of two groups in order: each pair stands in the table once.
    static size_t place(size_t a, size_t b) { return b * (b - 1) / 2 + a; }

    void take(size_t a, size_t b)
    {
        m_table[place(a, b)] = float(m_measure.difference(m_groups[a], m_groups[b]));
    }

    void findNearest(size_t a)
    {
        m_nearest[a] = a;
        for (size_t b = a + 1; b < m_groups.size(); ++b) {
            if (!m_gone[b] && (m_nearest[a] == a || at(a, b) < at(a, m_nearest[a])))
                m_nearest[a] = b;
        }
    }

    const std::vector<Moments> &m_groups;
    const VoiceMeasure &m_measure;
    std::vector<float> m_table;
    std::vector<size_t> m_nearest;
    std::vector<bool> m_gone;
};

std::vector<int> numberedByAppearance(const std::vector<size_t> &groups)
{
    std::vector<int> numbers(groups.size(), -1);
    std::vector<int> found;
    int next = 0;
    for (const size_t group : groups) {
        if (numbers[group] < 0)
            numbers[group] = next++;
        found.push_back(numbers[group]);
    }
    return found;
}

} // namespace

std::vector<Run> homogeneousRuns(const Cepstra &frames, const VoiceMeasure &measure, int least)
{
    std::vector<Run> found;
    std::vector<Run> open{{0, int(frames.cols())}};
    while (!open.empty()) {
        const Run run = open.back();
        open.pop_back();
        const Cut cut = bestCut(frames, run, measure, least);
        if (cut.difference > 0) {
            open.push_back({cut.at, run.end});
            open.push_back({run.first, cut.at});
        } else if (run.length() > 0) {
            found.push_back(run);
        }
    }
    return found;
}

std::vector<int> groupsByVoice(std::vector<Moments> items, const VoiceMeasure &measure,
                               const std::function<void()> &check)
{
    std::vector<size_t> group(items.size());
    std::iota(group.begin(), group.end(), size_t(0));
    Distances distances(items, measure, check);
    for (;;) {
        check();
        const auto [a, b] = distances.closest();
        if (a == b || distances.at(a, b) > 0)
            break;
        items[a] += items[b];
        distances.joined(a, b);
        std::ranges::replace(group, b, a);
    }
    return numberedByAppearance(group);
}

} // namespace engine
