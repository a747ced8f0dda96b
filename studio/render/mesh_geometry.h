#pragma once

#include <ImathMatrix.h>
#include <ImathVec.h>
#include <cstdint>
#include <vector>

#include "studio/services/scene_index.h"

namespace tavora::studio {

/// One part of an object, placed in the world. Immutable; any thread.
struct MeshGeometry {
    const SceneMesh* source = nullptr;
    std::size_t number = 0;            ///< in SceneIndex::meshes()
    std::vector<Imath::V3f> vertices;  ///< world; one spare at the end, for wide loads
    Imath::M44d worldToObject;
    Imath::M33d normalToWorld;       ///< keeps directions right, lengths not
    double objectTransform[9] = {};  ///< rows: world to object, for directions
    double worldTransform[9] = {};   ///< rows: object to world, for directions
    double facing = 1;               ///< -1 when the transform turns triangles inside out
};

/// `source` must outlive the result.
MeshGeometry placeMesh(const SceneMesh& source, std::size_t number);

}  // namespace tavora::studio
