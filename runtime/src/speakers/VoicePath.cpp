#include "speakers/VoicePath.h"

#include <algorithm>

namespace engine {

std::vector<int> bestVoicePath(const Eigen::MatrixXf &scores, int least, double changeCost)
{
    const int frames = int(scores.cols());
    const int voices = int(scores.rows());
    Eigen::MatrixXd sums = Eigen::MatrixXd::Zero(voices, frames + 1);
    for (int t = 0; t < frames; ++t)
        sums.col(t + 1) = sums.col(t) + scores.col(t).cast<double>();
    // Of the first t frames, when the last one is k's: the best sum, and where that run of k began.
    Eigen::MatrixXd value = Eigen::MatrixXd::Zero(voices, frames + 1);
    Eigen::MatrixXi since = Eigen::MatrixXi::Zero(voices, frames + 1);
    std::vector<int> best(size_t(frames) + 1, 0);
    for (int t = 1; t <= frames; ++t) {
        const int from = t - least;
        for (int k = 0; k < voices; ++k) {
            value(k, t) = value(k, t - 1) + double(scores(k, t - 1));
            since(k, t) = since(k, t - 1);
            if (from <= 0 || best[size_t(from)] == k)
                continue;
            const double changed = value(best[size_t(from)], from) + sums(k, t) - sums(k, from) - changeCost;
            if (changed > value(k, t)) {
                value(k, t) = changed;
                since(k, t) = from;
            }
        }
        value.col(t).maxCoeff(&best[size_t(t)]);
    }
    std::vector<int> path(size_t(frames), 0);
    for (int t = frames; t > 0;) {
        const int voice = best[size_t(t)];
        const int from = since(voice, t);
        std::fill(path.begin() + from, path.begin() + t, voice);
        t = from;
    }
    return path;
}

} // namespace engine
