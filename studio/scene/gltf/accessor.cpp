#include "studio/scene/gltf/accessor.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fmt/format.h>
#include <iterator>
#include <limits>
#include <string_view>
#include <utility>

#include "studio/util/text.h"

namespace tavora::studio {
namespace {

using gltf::ComponentType;

// How many elements without data (zeros) a file may have, in addition to one per byte.
constexpr std::size_t kZerosOfSmallFiles = 65536;

/// How the elements of an accessor are stored.
struct Layout {
    int index = 0;
    ComponentType componentType{};
    std::size_t componentSize = 0;
    std::size_t components = 0;
    bool normalized = false;

    std::size_t elementSize() const { return componentSize * components; }
};

/// The bytes of a component; 0 for an unknown type.
std::size_t sizeOf(ComponentType type) {
    switch (type) {
        case ComponentType::Byte:
        case ComponentType::UnsignedByte:
            return 1;
        case ComponentType::Short:
        case ComponentType::UnsignedShort:
            return 2;
        case ComponentType::UnsignedInt:
        case ComponentType::Float:
            return 4;
    }
    return 0;
}

bool isUnsigned(ComponentType type) {
    return type == ComponentType::UnsignedByte || type == ComponentType::UnsignedShort ||
           type == ComponentType::UnsignedInt;
}

/// The number of components of an element; 0 for an unknown type.
std::size_t componentsOf(std::string_view type) {
    constexpr std::pair<std::string_view, std::size_t> kTypes[] = {
        {"SCALAR", 1}, {"VEC2", 2}, {"VEC3", 3}, {"VEC4", 4},
        {"MAT2", 4},   {"MAT3", 9}, {"MAT4", 16}};
    const auto* found = std::find_if(std::begin(kTypes), std::end(kTypes),
                                     [type](const auto& entry) { return entry.first == type; });
    return found == std::end(kTypes) ? 0 : found->second;
}

Layout layoutOf(const GltfSource& source, int index, ComponentType componentType,
                std::string_view type, bool normalized = false) {
    Layout layout{index, componentType, sizeOf(componentType), componentsOf(type), normalized};
    if (layout.elementSize() > 0) return layout;
    source.fail(fmt::format("accessor {} is of an unknown type ({} of {}): export the file again",
                            index, shortened(type), static_cast<int>(componentType)));
}

Layout layoutOf(const GltfSource& source, int index) {
    const gltf::Accessor& accessor = gltf::at(source.document.accessors, index);
    return layoutOf(source, index, accessor.componentType, accessor.type, accessor.normalized);
}

/// The first of `count` elements at `offset` in a buffer view. Throws Error when they do not
/// fit into the view.
const std::uint8_t* elementsIn(const GltfSource& source, const Layout& layout,
                               const ByteRange& view, std::size_t offset, std::size_t count,
                               std::size_t stride) {
    const std::size_t size = layout.elementSize();
    const bool fits = count == 0 || (offset <= view.size && size <= view.size - offset &&
                                     (count - 1) <= (view.size - offset - size) / stride);
    if (!fits) {
        source.fail(fmt::format(
            "accessor {} reads {} elements past the end of its buffer view: export the file again",
            layout.index, count));
    }
    return view.data + offset;
}

template <typename T>
double normalizedTo(T value) {
    if constexpr (std::is_floating_point_v<T>) {
        return static_cast<double>(value);
    } else {
        const double scaled =
            static_cast<double>(value) / static_cast<double>(std::numeric_limits<T>::max());
        return std::max(scaled, -1.0);
    }
}

template <typename T>
double valueAt(const std::uint8_t* at, bool normalized) {
    T value;
    std::memcpy(&value, at, sizeof value);
    return normalized ? normalizedTo(value) : static_cast<double>(value);
}

double component(const Layout& layout, const std::uint8_t* at) {
    switch (layout.componentType) {
        case ComponentType::Byte:
            return valueAt<std::int8_t>(at, layout.normalized);
        case ComponentType::UnsignedByte:
            return valueAt<std::uint8_t>(at, layout.normalized);
        case ComponentType::Short:
            return valueAt<std::int16_t>(at, layout.normalized);
        case ComponentType::UnsignedShort:
            return valueAt<std::uint16_t>(at, layout.normalized);
        case ComponentType::UnsignedInt:
            return valueAt<std::uint32_t>(at, layout.normalized);
        default:
            return valueAt<float>(at, false);
    }
}

template <typename T>
void copyElement(const Layout& layout, const std::uint8_t* from, T* to) {
    if (std::is_same_v<T, float> && layout.componentType == ComponentType::Float) {
        std::memcpy(to, from, layout.elementSize());
        return;
    }
    for (std::size_t c = 0; c < layout.components; ++c) {
        to[c] = static_cast<T>(component(layout, from + c * layout.componentSize));
    }
}

template <typename T>
void applySparse(const GltfSource& source, const Layout& layout, const gltf::Accessor& accessor,
                 std::vector<T>& values) {
    const gltf::Sparse& sparse = *accessor.sparse;
    const std::size_t count = sparse.count;
    const Layout indexLayout =
        layoutOf(source, layout.index, sparse.indices.componentType, "SCALAR");
    if (!isUnsigned(indexLayout.componentType)) {
        source.fail(
            fmt::format("the sparse indices of accessor {} are not unsigned integers: "
                        "export the file again",
                        layout.index));
    }
    const std::uint8_t* indices =
        elementsIn(source, indexLayout, viewBytes(source, sparse.indices.bufferView),
                   sparse.indices.byteOffset, count, indexLayout.elementSize());
    const std::uint8_t* replacements =
        elementsIn(source, layout, viewBytes(source, sparse.values.bufferView),
                   sparse.values.byteOffset, count, layout.elementSize());
    for (std::size_t i = 0; i < count; ++i) {
        const auto target = static_cast<std::size_t>(
            component(indexLayout, indices + i * indexLayout.elementSize()));
        if (target >= accessor.count) {
            source.fail(fmt::format("accessor {} replaces element {} of {}: export the file again",
                                    layout.index, target, accessor.count));
        }
        copyElement(layout, replacements + i * layout.elementSize(),
                    &values[target * layout.components]);
    }
}

/// The first element of an accessor, and its `stride`; null for an accessor without a buffer
/// view, whose elements are zeros. Throws Error when the file does not have all elements.
const std::uint8_t* elementsOf(const GltfSource& source, const Layout& layout,
                               const gltf::Accessor& accessor, std::size_t& stride) {
    if (accessor.bufferView != gltf::kNone) {
        const ByteRange view = viewBytes(source, accessor.bufferView);
        stride = view.stride != 0 ? view.stride : layout.elementSize();
        return elementsIn(source, layout, view, accessor.byteOffset, accessor.count, stride);
    }
    if (accessor.count > kZerosOfSmallFiles + source.totalBytes) {
        source.fail(
            fmt::format("accessor {} claims {} elements without data: export the file again",
                        layout.index, accessor.count));
    }
    return nullptr;
}

template <typename T>
std::vector<T> readElements(const GltfSource& source, const Layout& layout,
                            const gltf::Accessor& accessor, const VertexPicks& picks) {
    std::size_t stride = 0;
    const std::uint8_t* from = elementsOf(source, layout, accessor, stride);
    std::vector<T> values(picks.size() * layout.components);
    if (from == nullptr) return values;
    for (std::size_t i = 0; i < picks.size(); ++i)
        copyElement(layout, from + picks[i] * stride, &values[i * layout.components]);
    return values;
}

/// Reads all elements, with sparse ones applied.
template <typename T>
std::vector<T> readAll(const GltfSource& source, const Layout& layout,
                       const gltf::Accessor& accessor) {
    auto values = readElements<T>(source, layout, accessor, VertexPicks(accessor.count));
    if (accessor.sparse) applySparse(source, layout, accessor, values);
    return values;
}

void checkFinite(const GltfSource& source, const FloatTable& table, int index) {
    const auto found = std::find_if_not(table.values.begin(), table.values.end(),
                                        [](float v) { return std::isfinite(v); });
    if (found == table.values.end()) return;
    const auto position = static_cast<std::size_t>(found - table.values.begin());
    source.fail(
        fmt::format("a value of accessor {} is not a finite number (element {} of those "
                    "used): repair the model",
                    index, position / static_cast<std::size_t>(table.components)));
}

}  // namespace

ByteRange viewBytes(const GltfSource& source, int index) {
    const gltf::BufferView& view = gltf::at(source.document.bufferViews, index);
    const std::span<const std::uint8_t> buffer = gltf::at(source.buffers, view.buffer);
    if (view.byteOffset > buffer.size() || view.byteLength > buffer.size() - view.byteOffset) {
        source.fail(
            fmt::format("buffer view {} reaches past the end of buffer {}: export the file again",
                        index, view.buffer));
    }
    return {buffer.data() + view.byteOffset, view.byteLength, view.byteStride};
}

FloatTable readFloats(const GltfSource& source, int index, int minComponents, int maxComponents,
                      const VertexPicks* picks) {
    const gltf::Accessor& accessor = gltf::at(source.document.accessors, index);
    const Layout layout = layoutOf(source, index);
    const int components = static_cast<int>(layout.components);
    if (components < minComponents || components > maxComponents) {
        source.fail(
            fmt::format("accessor {} has {} components where {} are needed: export the file again",
                        index, components, minComponents));
    }
    FloatTable table{accessor.count, components, {}};
    if (picks == nullptr || accessor.sparse) {
        table.values = readAll<float>(source, layout, accessor);
        if (picks != nullptr) table = picked(table, *picks);
    } else {
        table.count = picks->size();
        table.values = readElements<float>(source, layout, accessor, *picks);
    }
    checkFinite(source, table, index);
    return table;
}

std::vector<std::uint32_t> readIntegers(const GltfSource& source, int index) {
    const gltf::Accessor& accessor = gltf::at(source.document.accessors, index);
    Layout layout = layoutOf(source, index);
    layout.normalized = false;
    if (!isUnsigned(layout.componentType) || layout.components != 1) {
        source.fail(fmt::format(
            "accessor {} does not hold single unsigned integers: export the file again", index));
    }
    return readAll<std::uint32_t>(source, layout, accessor);
}

std::size_t elementCount(const GltfSource& source, int index) {
    return gltf::at(source.document.accessors, index).count;
}

void checkCount(const GltfSource& source, int index) {
    const gltf::Accessor& accessor = gltf::at(source.document.accessors, index);
    std::size_t stride = 0;
    elementsOf(source, layoutOf(source, index), accessor, stride);
}

FloatTable picked(const FloatTable& table, const VertexPicks& picks) {
    const auto components = static_cast<std::size_t>(table.components);
    FloatTable result{picks.size(), table.components, {}};
    result.values.resize(result.count * components);
    for (std::size_t i = 0; i < result.count; ++i)
        std::copy_n(table.at(picks[i]), components, &result.values[i * components]);
    return result;
}

}  // namespace tavora::studio
