#pragma once

#include <cstdint>
#include <vector>

#include "studio/scene/gltf/source.h"
#include "studio/scene/gltf/vertex_picks.h"

namespace tavora::studio {

/// An accessor's elements as floats, `components` each, sparse values put in,
/// normalized integers brought to 0..1 or -1..1. Every value is finite.
struct FloatTable {
    std::size_t count = 0;
    int components = 0;
    std::vector<float> values;

    const float* at(std::size_t i) const {
        return &values[i * static_cast<std::size_t>(components)];
    }
};

/// Reads accessor `index`, which must hold `least` to `most` components: the
/// elements that `picks` names, or all. Throws Error for anything out of
/// range or not a number.
FloatTable readFloats(const GltfSource& source, int index, int least, int most,
                      const VertexPicks* picks = nullptr);

/// Reads accessor `index` as single unsigned integers. Throws Error.
std::vector<std::uint32_t> readIntegers(const GltfSource& source, int index);

/// How many elements accessor `index` claims to have.
std::size_t elementCount(const GltfSource& source, int index);

/// Throws Error when accessor `index` claims more elements than the file's
/// bytes account for, before memory is set aside for them.
void checkBacked(const GltfSource& source, int index);

/// The picked elements of a table.
FloatTable picked(const FloatTable& table, const VertexPicks& picks);

/// The bytes of a buffer view, checked. Throws Error.
struct ByteRange {
    const std::uint8_t* data = nullptr;
    std::size_t size = 0;
    std::size_t stride = 0;  ///< 0: tightly packed
};
ByteRange viewBytes(const GltfSource& source, int index);

}  // namespace tavora::studio
