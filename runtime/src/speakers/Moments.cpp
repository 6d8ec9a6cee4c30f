#include "speakers/Moments.h"

#include <Eigen/Cholesky>

#include <cmath>

namespace engine {

namespace {

constexpr double framesOfUsual = 20;

} // namespace

void Moments::add(const Eigen::Ref<const Cepstra> &frames)
{
    const auto exact = frames.cast<double>().eval();
    m_count += double(exact.cols());
    m_sum += exact.rowwise().sum();
    m_products += exact * exact.transpose();
}

Moments &Moments::operator+=(const Moments &other)
{
    m_count += other.m_count;
    m_sum += other.m_sum;
    m_products += other.m_products;
    return *this;
}

Moments &Moments::operator-=(const Moments &other)
{
    m_count -= other.m_count;
    m_sum -= other.m_sum;
    m_products -= other.m_products;
    return *this;
}

Moments Moments::limited(double most) const
{
    Moments made = *this;
    if (m_count > most) {
        made.m_count = most;
        made.m_sum *= most / m_count;
        made.m_products *= most / m_count;
    }
    return made;
}

Moments::Square Moments::covariance() const
{
    if (m_count < 1)
        return Square::Zero();
    const Vector mean = m_sum / m_count;
    return m_products / m_count - mean * mean.transpose();
}

double Moments::logDeterminant(const Square &usual) const
{
    const Square drawn = (covariance() * m_count + usual * framesOfUsual) / (m_count + framesOfUsual);
    const Eigen::LLT<Square> root(drawn);
    return 2 * root.matrixLLT().diagonal().array().log().sum();
}

double VoiceMeasure::difference(const Moments &allOfA, const Moments &allOfB) const
{
    constexpr double parameters = cepstrumSize + cepstrumSize * (cepstrumSize + 1) / 2.0;
    const Moments a = allOfA.limited(mostFrames);
    const Moments b = allOfB.limited(mostFrames);
    Moments both = a;
    both += b;
    const double gain = both.count() * both.logDeterminant(usual) - a.count() * a.logDeterminant(usual) -
                        b.count() * b.logDeterminant(usual);
    return 0.5 * gain - strictness * 0.5 * parameters * std::log(both.count());
}

} // namespace engine
