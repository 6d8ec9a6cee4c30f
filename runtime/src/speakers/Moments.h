#pragma once

#include "speakers/Cepstra.h"

#include <Eigen/Core>

namespace engine {

// What is kept of any number of frames: enough for the Gaussian that describes them best, and for that of
// their union with others.
class Moments
{
public:
    using Vector = Eigen::Matrix<double, cepstrumSize, 1>;
    using Square = Eigen::Matrix<double, cepstrumSize, cepstrumSize>;

    void add(const Eigen::Ref<const Cepstra> &frames);
    Moments &operator+=(const Moments &other);
    Moments &operator-=(const Moments &other);

    // The same moments, as if they were those of `most` frames where they are of more.
    Moments limited(double most) const;

    double count() const { return m_count; }
    Square covariance() const;

    // Of the covariance, drawn towards `usual` as if some more frames had been there: a few frames alone
    // would always look like a voice of their own.
    double logDeterminant(const Square &usual) const;

private:
    double m_count = 0;
    Vector m_sum = Vector::Zero();
    Square m_products = Square::Zero();
};

// How two stretches are compared.
struct VoiceMeasure
{
    // The covariance of all frames of the recording.
    Moments::Square usual = Moments::Square::Identity();
    // How much better two voices must explain the frames than one. 1 is the Bayesian information criterion;
    // more makes up for frames that follow each other being alike.
    double strictness = 1;
    // As many frames of each side count. One person does not sound the same for ten minutes, and with enough
    // frames every little change would be evidence for another person.
    double mostFrames = 3000;

    // How much better two Gaussians describe the frames of both than one does, less what the second one
    // costs: above 0 when they sound like two voices.
    double difference(const Moments &allOfA, const Moments &allOfB) const;
};

} // namespace engine
