#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "studio/scene/gltf/accessor.h"

namespace tavora::studio {

/// A primitive that was stored compressed: its triangles and, by attribute
/// name, one value a vertex.
struct DracoPrimitive {
    std::vector<std::uint32_t> indices;
    std::map<std::string, FloatTable> attributes;
};

/// Whether the primitive is stored with KHR_draco_mesh_compression.
bool isDraco(const tinygltf::Primitive& primitive);

/// The buffer view with the compressed mesh; -1 when it is not compressed.
int dracoView(const tinygltf::Primitive& primitive);

/// Decodes it. Throws Error that starts with `where`.
DracoPrimitive readDraco(const GltfSource& source, const tinygltf::Primitive& primitive,
                         const std::string& where);

}  // namespace tavora::studio
