#pragma once

#include "speakers/Cepstra.h"

namespace engine {

// A voice as a mixture of Gaussians with diagonal covariances.
class Mixture
{
public:
    // Describes the frames, which are at least one. The same frames always give the same mixture.
    static Mixture of(const Cepstra &frames, int components);

    // Fits the mixture to the frames, going on from what it is.
    void fit(const Cepstra &frames, int rounds);

    // The logarithm of the likelihood of each frame.
    Eigen::RowVectorXf logLikelihoods(const Eigen::Ref<const Cepstra> &frames) const;

    int components() const { return int(m_weights.size()); }

private:
    // By component and frame, the component's weight included.
    Eigen::MatrixXf scores(const Eigen::Ref<const Cepstra> &frames) const;

    Cepstra m_means;
    Cepstra m_variances;
    Eigen::VectorXf m_weights;
    Eigen::Matrix<float, cepstrumSize, 1> m_floor;
};

} // namespace engine
