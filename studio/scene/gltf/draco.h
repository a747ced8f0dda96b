#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "studio/scene/gltf/accessor.h"

namespace tavora::studio {

/// A decoded primitive: three indices for each triangle and, by attribute name, one element
/// for each vertex.
struct DracoPrimitive {
    std::vector<std::uint32_t> indices;
    std::map<std::string, FloatTable> attributes;
};

/// Decodes a compressed primitive. The memory of the result and of decoding is charged to
/// `memory`. Throws Error, with `where` as the location in its message.
DracoPrimitive readDraco(const GltfSource& source, const gltf::Primitive& primitive,
                         const std::string& where, MemoryShare& memory);

}  // namespace tavora::studio
