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

/// Decodes a primitive that is stored compressed. What that takes while the result
/// lives, `memory` is charged with. Throws Error that starts with `where`.
DracoPrimitive readDraco(const GltfSource& source, const gltf::Primitive& primitive,
                         const std::string& where, MemoryShare& memory);

}  // namespace tavora::studio
