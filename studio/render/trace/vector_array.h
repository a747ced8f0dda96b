#pragma once

#include <ImathVec.h>
#include <cstddef>
#include <vector>

#include "studio/util/vector_loops.h"

namespace tavora::studio {

/// Vectors as structure of arrays. The arrays do not move.
struct VectorArray {
    explicit VectorArray(std::size_t capacity) : x(capacity), y(capacity), z(capacity) {}

    void set(std::size_t i, const Imath::V3d& v) {
        x[i] = v.x;
        y[i] = v.y;
        z[i] = v.z;
    }
    Imath::V3d operator[](std::size_t i) const { return {x[i], y[i], z[i]}; }

    std::vector<double> x;
    std::vector<double> y;
    std::vector<double> z;
};

}  // namespace tavora::studio
