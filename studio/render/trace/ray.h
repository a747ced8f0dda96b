#pragma once

#include <ImathVec.h>
#include <cstdint>
#include <embree3/rtcore.h>
#include <limits>

#include "studio/services/scene_index.h"

namespace tavora::studio {

/// A ray in the world. Distances are scene units along the unit direction. The footprint
/// is what a texture is averaged over where the ray hits: a cone around the ray.
struct Ray {
    Imath::V3d origin{0, 0, 0};
    Imath::V3d direction{0, 0, -1};
    double tMin = 0;
    double tMax = std::numeric_limits<double>::infinity();
    double footprint = 0;   ///< its diameter at the origin
    double coneSpread = 0;  ///< by which the diameter grows for each unit of distance
    /// A shadow ray passes this mesh's surface on this mesh's object: a surface without
    /// self-shadow. Null: nothing is passed.
    const SceneMesh* excludedSelf = nullptr;

    double footprintAt(double distance) const { return footprint + coneSpread * distance; }
};

/// A triangle that a ray hits, or none. The distance follows from the ray.
struct Hit {
    static constexpr std::uint32_t kNone = 0xffffffff;

    std::uint32_t mesh = kNone;  ///< in SceneIndex::meshes()
    std::uint32_t triangle = 0;

    bool isNone() const { return mesh == kNone; }
    bool operator==(const Hit&) const = default;
};

/// What Embree hit: a triangle of a mesh, or of the mesh that an instance shows.
inline Hit hitOf(std::uint32_t geometry, std::uint32_t instance, std::uint32_t triangle) {
    if (geometry == RTC_INVALID_GEOMETRY_ID) return {};
    return {instance == RTC_INVALID_GEOMETRY_ID ? geometry : instance, triangle};
}

}  // namespace tavora::studio
