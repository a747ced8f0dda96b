#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "studio/scene/gltf/source.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// The displacements of a morph target: each array is empty or has one for each vertex.
struct MorphTarget {
    std::vector<Imath::V3f> positions;
    std::vector<Imath::V3f> normals;
    std::vector<Imath::V3f> tangents;
};

/// Four joints for each vertex, as indices into the skin's joints, and their weights, which
/// are at least 0. Both arrays are empty or have one entry for each vertex.
struct Influences {
    std::vector<std::array<std::uint32_t, 4>> joints;
    std::vector<Imath::V4f> weights;
};

/// Vertex data that only some materials need.
struct MaterialNeeds {
    std::optional<TextureUse> normalTexture;  ///< tangents, for this texture
    bool colors = true;

    /// Equal for materials that can share geometry.
    auto key() const {
        const TextureUse use = normalTexture.value_or(TextureUse{});
        return std::make_tuple(colors, normalTexture.has_value(), use.uvSet, use.rotation,
                               use.scale.x, use.scale.y);
    }
};

/// A primitive as read from the file, before morphing and skinning.
struct PrimitiveGeometry {
    Mesh mesh;
    bool flat = false;  ///< flat normals were computed, and no two triangles share a vertex
    std::vector<MorphTarget> targets;
    std::array<Influences, 2> influences;
    /// The texture for which the tangents were computed; empty when they are the file's.
    std::optional<TextureUse> tangentsMadeFor;
};

/// Reads a primitive of triangles, of any of the three modes. Vertices that no triangle uses
/// are left out. `where` is the primitive's name in messages. Throws Error.
PrimitiveGeometry readPrimitive(const GltfSource& source, const gltf::Primitive& primitive,
                                const MaterialNeeds& needs, const std::string& where);

}  // namespace tavora::studio
