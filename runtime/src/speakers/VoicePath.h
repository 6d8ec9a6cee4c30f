#pragma once

#include <Eigen/Core>

#include <vector>

namespace engine {

// Which voice each frame belongs to, so that the scores (by voice and frame; logarithms) add up to the most.
// A change of voice costs `changeCost` and the next voice stays for at least `least` frames.
std::vector<int> bestVoicePath(const Eigen::MatrixXf &scores, int least, double changeCost);

} // namespace engine
