#pragma once

#include <cstdint>
#include <vector>

#include "studio/scene/gltf/source.h"
#include "studio/scene/gltf/vertex_picks.h"

namespace tavora::studio {

/// An accessor's elements as floats, `components` for each element. Sparse values are
/// applied, and normalized integers are converted to 0..1 or -1..1. Every value is finite.
struct FloatTable {
    std::size_t count = 0;
    int components = 0;
    std::vector<float> values;

    const float* at(std::size_t i) const {
        return &values[i * static_cast<std::size_t>(components)];
    }
};

/// Reads accessor `index`, whose elements must have `minComponents` to `maxComponents`
/// components: the elements in `picks`, or all of them. Throws Error for data outside its
/// buffer view and for a value that is not finite.
FloatTable readFloats(const GltfSource& source, int index, int minComponents, int maxComponents,
                      const VertexPicks* picks = nullptr);

/// Reads accessor `index` as single unsigned integers. Throws Error.
std::vector<std::uint32_t> readIntegers(const GltfSource& source, int index);

/// The number of elements of accessor `index` according to the document.
std::size_t elementCount(const GltfSource& source, int index);

/// Throws Error when accessor `index` has more elements than the file has data for. To be
/// called before memory is allocated for them.
void checkCount(const GltfSource& source, int index);

/// The elements of `table` that are in `picks`, in the order of `picks`.
FloatTable picked(const FloatTable& table, const VertexPicks& picks);

/// The bytes of a buffer view.
struct ByteRange {
    const std::uint8_t* data = nullptr;
    std::size_t size = 0;
    std::size_t stride = 0;  ///< 0: tightly packed
};
/// The bytes of buffer view `index`. Throws Error when they are outside the buffer.
ByteRange viewBytes(const GltfSource& source, int index);

}  // namespace tavora::studio
