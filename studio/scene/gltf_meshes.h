#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "studio/scene/gltf_source.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// One primitive as read: its vertices before morphing and skinning.
struct SourcePrimitive {
    Mesh mesh;  ///< normals may be empty yet
    int material = -1;
    struct Target {
        std::vector<Imath::V3f> positions;  ///< displacements; empty or one a vertex
        std::vector<Imath::V3f> normals;
    };
    std::vector<Target> targets;
    std::vector<std::array<std::uint32_t, 4>> joints;  ///< up to 8 influences in two sets
    std::vector<Imath::V4f> weights;
    std::vector<std::array<std::uint32_t, 4>> joints1;
    std::vector<Imath::V4f> weights1;
};

/// Reads all triangle primitives of mesh `index`; others are left out with a
/// line in `warnings`. Throws SceneError.
std::vector<SourcePrimitive> readMesh(const GltfSource& source, int index,
                                      std::vector<std::string>& warnings);

/// Gives a mesh without normals flat ones, splitting shared vertices.
void makeFlatNormals(Mesh& mesh);

}  // namespace tavora::studio
