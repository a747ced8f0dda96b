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

/// Displacements of a morph target: empty, or one a vertex.
struct MorphTarget {
    std::vector<Imath::V3f> positions;
    std::vector<Imath::V3f> normals;
    std::vector<Imath::V3f> tangents;
};

/// Four joints a vertex, as indices into the skin, and their shares, 0 or more.
/// Empty, or one a vertex.
struct Influences {
    std::vector<std::array<std::uint32_t, 4>> joints;
    std::vector<Imath::V4f> weights;
};

/// What of a primitive's vertices its material needs beyond the usual.
struct MaterialNeeds {
    std::optional<TextureUse> normalTexture;  ///< tangents for it
    bool colors = true;

    /// Whether geometry for the one is as that for the other.
    auto key() const {
        const TextureUse use = normalTexture.value_or(TextureUse{});
        return std::make_tuple(colors, normalTexture.has_value(), use.uvSet, use.rotation,
                               use.scale.x, use.scale.y);
    }
};

/// One primitive as read: complete, before morphing and skinning.
struct PrimitiveGeometry {
    Mesh mesh;
    bool flat = false;  ///< normals were made: no two triangles share a vertex
    std::vector<MorphTarget> targets;
    std::array<Influences, 2> influences;
    /// What the mesh's tangents were made for; none when they are the file's.
    std::optional<TextureUse> tangentsMadeFor;
};

/// Reads a primitive whose mode is one of triangles. Vertices that no triangle
/// uses are left out. Throws Error that names `where` in the file.
PrimitiveGeometry readPrimitive(const GltfSource& source, const gltf::Primitive& primitive,
                                const MaterialNeeds& needs, const std::string& where);

}  // namespace tavora::studio
