#include "speakers/Mixture.h"

#include <cmath>
#include <numbers>

namespace engine {

namespace {

constexpr float leastShareOfVariance = 0.05F;
constexpr float leastFrames = 4; // that a component stands for; one with fewer stays as it was
constexpr int roundsFromScratch = 8;

Eigen::RowVectorXf logSums(const Eigen::MatrixXf &scores)
{
    const Eigen::RowVectorXf highest = scores.colwise().maxCoeff();
    return highest.array() + (scores.rowwise() - highest).array().exp().colwise().sum().log();
}

} // namespace

Mixture Mixture::of(const Cepstra &frames, int components)
{
    Mixture mixture;
    const auto mean = frames.rowwise().mean().eval();
    const auto variance = (frames.colwise() - mean).array().square().rowwise().mean().max(1e-4F).matrix().eval();
    mixture.m_floor = variance * leastShareOfVariance;
    mixture.m_means.resize(Eigen::NoChange, components);
    for (int i = 0; i < components; ++i)
        mixture.m_means.col(i) = frames.col((2 * i + 1) * frames.cols() / (2 * components));
    mixture.m_variances = variance.replicate(1, components);
    mixture.m_weights = Eigen::VectorXf::Constant(components, 1.0F / float(components));
    mixture.fit(frames, roundsFromScratch);
    return mixture;
}

Eigen::MatrixXf Mixture::scores(const Eigen::Ref<const Cepstra> &frames) const
{
    const Cepstra precisions = m_variances.cwiseInverse();
    const Cepstra scaled = m_means.cwiseProduct(precisions);
    const float constant = cepstrumSize * std::log(2 * std::numbers::pi_v<float>);
    const Eigen::VectorXf ownPart =
        m_weights.array().max(1e-10F).log() -
        0.5F * (constant + m_variances.array().log().colwise().sum().transpose() +
                m_means.cwiseProduct(scaled).colwise().sum().transpose().array());
    Eigen::MatrixXf found = scaled.transpose() * frames;
    found.noalias() -= 0.5F * precisions.transpose() * frames.cwiseAbs2();
    found.colwise() += ownPart;
    return found;
}

Eigen::RowVectorXf Mixture::logLikelihoods(const Eigen::Ref<const Cepstra> &frames) const
{
    return logSums(scores(frames));
}

void Mixture::fit(const Cepstra &frames, int rounds)
{
    for (int round = 0; round < rounds; ++round) {
        Eigen::MatrixXf shares = scores(frames);
        const Eigen::RowVectorXf sums = logSums(shares);
        shares = (shares.rowwise() - sums).array().exp();
        const Eigen::VectorXf counts = shares.rowwise().sum();
        const Cepstra firsts = frames * shares.transpose();
        const Cepstra seconds = frames.cwiseAbs2() * shares.transpose();
        for (int i = 0; i < components(); ++i) {
            if (counts[i] < leastFrames)
                continue;
            m_means.col(i) = firsts.col(i) / counts[i];
            m_variances.col(i) = (seconds.col(i) / counts[i] - m_means.col(i).cwiseAbs2()).cwiseMax(m_floor);
        }
        m_weights = counts / float(frames.cols());
    }
}

} // namespace engine
