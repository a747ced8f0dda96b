#pragma once

#include <ImathVec.h>

namespace tavora::studio {

/// Writes a vector as the three numbers that modules and their records take.
inline void writeVector(const Imath::V3d& from, double to[3]) {
    to[0] = from.x;
    to[1] = from.y;
    to[2] = from.z;
}

}  // namespace tavora::studio
