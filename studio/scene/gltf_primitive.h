#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "studio/scene/gltf_source.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// Displacements of a morph target: empty, or one a vertex.
struct MorphTarget {
    std::vector<Imath::V3f> positions;
    std::vector<Imath::V3f> normals;
};

/// Four joints a vertex, as indices into the skin, and their shares, 0 or more.
/// Empty, or one a vertex.
struct Influences {
    std::vector<std::array<std::uint32_t, 4>> joints;
    std::vector<Imath::V4f> weights;
};

/// One primitive as read: complete, before morphing and skinning.
struct PrimitiveGeometry {
    Mesh mesh;
    bool flat = false;  ///< normals were made: no two triangles share a vertex
    std::vector<MorphTarget> targets;
    std::array<Influences, 2> influences;
};

/// Reads a primitive whose mode is one of triangles. Vertices that no triangle
/// uses are left out. Throws SceneError that names `where` in the file.
PrimitiveGeometry readPrimitive(const GltfSource& source, const tinygltf::Primitive& primitive,
                                const std::string& where);

}  // namespace tavora::studio
