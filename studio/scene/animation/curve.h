#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace tavora::studio {

/// How a curve interpolates between two keys.
enum class Interpolation { Linear, Step, CubicSpline };

/// Values that change with time. Before its first key and after its last, a curve keeps the
/// value of that key. Any thread may read.
struct Curve {
    Interpolation interpolation = Interpolation::Linear;
    /// The four values are a quaternion x, y, z, w: sample() gives one of unit length, and
    /// Linear takes the shorter arc.
    bool isRotation = false;
    std::size_t width = 1;      ///< how many values the curve has at a time
    std::vector<float> times;   ///< of the keys, seconds, ascending; at least one
    std::vector<float> values;  ///< `width` a key; CubicSpline: in-tangent, value, out-tangent

    /// Writes the `width` values at a time to `out`. Formulas: glTF 2.0, Appendix C. The key
    /// is chosen with the time in single precision, like that of the keys, so that a step
    /// whose key is on a frame is visible in that frame.
    void sample(double seconds, std::span<double> out) const;
};

}  // namespace tavora::studio
