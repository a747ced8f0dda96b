#include "studio/scene/gltf_accessor.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fmt/format.h>

namespace tavora::studio {
namespace {

/// How one accessor's elements lie in memory.
struct Layout {
    int index = 0;
    int componentType = 0;
    std::size_t componentSize = 0;
    std::size_t components = 0;
    bool normalized = false;

    std::size_t elementSize() const { return componentSize * components; }
};

Layout layoutOf(const GltfSource& source, int index, const tinygltf::Accessor& accessor) {
    Layout layout;
    layout.index = index;
    layout.componentType = accessor.componentType;
    const int size =
        tinygltf::GetComponentSizeInBytes(static_cast<std::uint32_t>(accessor.componentType));
    const int components =
        tinygltf::GetNumComponentsInType(static_cast<std::uint32_t>(accessor.type));
    if (size < 1 || size > 4 || components < 1) {
        source.fail(fmt::format("accessor {} is of an unknown type: export the file again", index));
    }
    layout.componentSize = static_cast<std::size_t>(size);
    layout.components = static_cast<std::size_t>(components);
    layout.normalized = accessor.normalized;
    return layout;
}

/// Start of `count` elements from `offset` in a view; throws when they do not fit.
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
        case TINYGLTF_COMPONENT_TYPE_BYTE:
            return valueAt<std::int8_t>(at, layout.normalized);
        case TINYGLTF_COMPONENT_TYPE_UNSIGNED_BYTE:
            return valueAt<std::uint8_t>(at, layout.normalized);
        case TINYGLTF_COMPONENT_TYPE_SHORT:
            return valueAt<std::int16_t>(at, layout.normalized);
        case TINYGLTF_COMPONENT_TYPE_UNSIGNED_SHORT:
            return valueAt<std::uint16_t>(at, layout.normalized);
        case TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT:
            return valueAt<std::uint32_t>(at, layout.normalized);
        default:
            return valueAt<float>(at, false);
    }
}

void copyElement(const Layout& layout, const std::uint8_t* from, float* to) {
    for (std::size_t c = 0; c < layout.components; ++c) {
        to[c] = static_cast<float>(component(layout, from + c * layout.componentSize));
    }
}

/// Guards allocation: a count must be backed by bytes in the file.
void checkCount(const GltfSource& source, int index, const tinygltf::Accessor& accessor) {
    std::size_t backing = 0;
    for (const tinygltf::Buffer& buffer : source.model.buffers)
        backing += buffer.data.size();
    if (accessor.bufferView >= 0 || accessor.count <= std::max<std::size_t>(backing, 65536)) return;
    source.fail(fmt::format("accessor {} claims {} elements without data: export the file again",
                            index, accessor.count));
}

void putSparse(const GltfSource& source, const Layout& layout, const tinygltf::Accessor& accessor,
               FloatTable& table) {
    const auto count = static_cast<std::size_t>(std::max(accessor.sparse.count, 0));
    tinygltf::Accessor indexAccessor;
    indexAccessor.componentType = accessor.sparse.indices.componentType;
    indexAccessor.type = TINYGLTF_TYPE_SCALAR;
    Layout indexLayout = layoutOf(source, layout.index, indexAccessor);
    const ByteRange indexView = viewBytes(source, accessor.sparse.indices.bufferView);
    const ByteRange valueView = viewBytes(source, accessor.sparse.values.bufferView);
    const std::uint8_t* indices =
        elementsIn(source, indexLayout, indexView,
                   static_cast<std::size_t>(std::max(accessor.sparse.indices.byteOffset, 0)), count,
                   indexLayout.elementSize());
    const std::uint8_t* values =
        elementsIn(source, layout, valueView,
                   static_cast<std::size_t>(std::max(accessor.sparse.values.byteOffset, 0)), count,
                   layout.elementSize());
    for (std::size_t i = 0; i < count; ++i) {
        const auto target = static_cast<std::size_t>(
            component(indexLayout, indices + i * indexLayout.elementSize()));
        if (target >= table.count) {
            source.fail(fmt::format("accessor {} replaces element {} of {}: export the file again",
                                    layout.index, target, table.count));
        }
        copyElement(layout, values + i * layout.elementSize(),
                    &table.values[target * layout.components]);
    }
}

}  // namespace

void failMissing(const GltfSource& source, const char* kind, int index, std::size_t count) {
    source.fail(fmt::format("{} {} does not exist (the file has {}): export the file again", kind,
                            index, count));
}

ByteRange viewBytes(const GltfSource& source, int index) {
    const tinygltf::BufferView& view =
        element(source, source.model.bufferViews, index, "buffer view");
    const tinygltf::Buffer& buffer = element(source, source.model.buffers, view.buffer, "buffer");
    if (view.byteOffset > buffer.data.size() ||
        view.byteLength > buffer.data.size() - view.byteOffset) {
        source.fail(
            fmt::format("buffer view {} reaches past the end of buffer {}: export the file again",
                        index, view.buffer));
    }
    return {buffer.data.data() + view.byteOffset, view.byteLength, view.byteStride};
}

FloatTable readFloats(const GltfSource& source, int index, int least, int most) {
    const tinygltf::Accessor& accessor = element(source, source.model.accessors, index, "accessor");
    const Layout layout = layoutOf(source, index, accessor);
    const int components = static_cast<int>(layout.components);
    if (components < least || components > most) {
        source.fail(
            fmt::format("accessor {} has {} components where {} are needed: export the file again",
                        index, components, least));
    }
    checkCount(source, index, accessor);
    FloatTable table{accessor.count, components, {}};
    if (accessor.bufferView >= 0) {
        const ByteRange view = viewBytes(source, accessor.bufferView);
        const std::size_t stride = view.stride != 0 ? view.stride : layout.elementSize();
        const std::uint8_t* from =
            elementsIn(source, layout, view, accessor.byteOffset, accessor.count, stride);
        table.values.resize(accessor.count * layout.components);
        for (std::size_t i = 0; i < accessor.count; ++i) {
            copyElement(layout, from + i * stride, &table.values[i * layout.components]);
        }
    } else {
        table.values.resize(accessor.count * layout.components);
    }
    if (accessor.sparse.isSparse) putSparse(source, layout, accessor, table);
    for (std::size_t i = 0; i < table.values.size(); ++i) {
        if (std::isfinite(table.values[i])) continue;
        source.fail(fmt::format("element {} of accessor {} is not a number: repair the model",
                                i / layout.components, index));
    }
    return table;
}

std::vector<std::uint32_t> readIntegers(const GltfSource& source, int index, int components) {
    const tinygltf::Accessor& accessor = element(source, source.model.accessors, index, "accessor");
    Layout layout = layoutOf(source, index, accessor);
    layout.normalized = false;
    const bool integer = layout.componentType == TINYGLTF_COMPONENT_TYPE_UNSIGNED_BYTE ||
                         layout.componentType == TINYGLTF_COMPONENT_TYPE_UNSIGNED_SHORT ||
                         layout.componentType == TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT;
    if (!integer || layout.components != static_cast<std::size_t>(components)) {
        source.fail(fmt::format(
            "accessor {} does not hold {} unsigned integers each: export the file again", index,
            components));
    }
    checkCount(source, index, accessor);
    const ByteRange view = viewBytes(source, accessor.bufferView);
    const std::size_t stride = view.stride != 0 ? view.stride : layout.elementSize();
    const std::uint8_t* from =
        elementsIn(source, layout, view, accessor.byteOffset, accessor.count, stride);
    std::vector<std::uint32_t> values(accessor.count * layout.components);
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::uint8_t* at = from + (i / layout.components) * stride +
                                 (i % layout.components) * layout.componentSize;
        values[i] = static_cast<std::uint32_t>(component(layout, at));
    }
    return values;
}

}  // namespace tavora::studio
