#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace tavora::studio {

/// How a curve goes from one key to the next.
enum class Interpolation { Linear, Step, CubicSpline };

/// Values that change with time. Before its first key and after its last a curve
/// keeps the value that it has there. Immutable; any thread.
struct Curve {
    Interpolation interpolation = Interpolation::Linear;
    bool isRotation = false;    ///< of four values, a quaternion x, y, z, w: the result is of
                                ///< unit length, Linear goes the shorter way round
    std::size_t width = 1;      ///< values at a time
    std::vector<float> times;   ///< seconds, one at least, none before another
    std::vector<float> values;  ///< `width` a key; CubicSpline: in-tangent, value, out-tangent

    /// Writes the `width` values at a time. Formulas: glTF 2.0, Appendix C.
    /// The time is taken in single precision, as keys are, so that a step on a
    /// frame is seen in that frame.
    void sample(double seconds, std::span<double> out) const;
};

}  // namespace tavora::studio
