#include "studio/scene/gltf/draco.h"

#include <algorithm>
#include <cmath>
#include <draco/compression/decode.h>
#include <fmt/format.h>
#include <memory>
#include <optional>

#include "studio/util/text.h"

namespace tavora::studio {
namespace {

// The triangles that a byte of compressed data may encode; flat and repetitive meshes reach
// a few dozen.
constexpr std::uint64_t kMaxPerByte = 256;
constexpr std::uint64_t kFreeTriangles = 4096;

/// Reads the counts at the start of compressed data, because the decoder allocates memory
/// for them before it looks at the rest.
class CountReader {
  public:
    explicit CountReader(const ByteRange& bytes) : bytes_(bytes) {}

    struct Counts {
        std::uint64_t triangles;
        std::uint64_t vertices;
    };

    /// Empty when the data does not begin with a valid header.
    std::optional<Counts> read() {
        constexpr std::size_t kMagic = 5;
        offset_ = kMagic;
        const unsigned major = byte();
        const unsigned version = major * 0x100U + byte();
        byte();  // kind of geometry
        const bool byEdges = byte() == 1;
        const unsigned flags = byte() + 0x100U * byte();
        if ((flags & 0x8000U) != 0) skipMetadata();
        if (byEdges) byte();  // kind of traversal
        const bool plain = version < 0x202U;
        const std::uint64_t first = plain ? word() : varint();
        const std::uint64_t second = plain ? word() : varint();
        if (!good_) return std::nullopt;
        return byEdges ? Counts{second, first} : Counts{first, second};
    }

  private:
    unsigned byte() {
        if (offset_ >= bytes_.size) good_ = false;
        return good_ ? bytes_.data[offset_++] : 0U;
    }

    std::uint64_t word() {
        std::uint64_t value = 0;
        for (unsigned i = 0; i < 4; ++i)
            value |= std::uint64_t{byte()} << (8 * i);
        return value;
    }

    std::uint64_t varint() {
        std::uint64_t value = 0;
        for (unsigned shift = 0; shift < 63; shift += 7) {
            const unsigned b = byte();
            value |= std::uint64_t{b & 0x7fU} << shift;
            if ((b & 0x80U) == 0) return value;
        }
        good_ = false;
        return 0;
    }

    void skip(std::uint64_t count) {
        if (count > bytes_.size - std::min(offset_, bytes_.size)) good_ = false;
        if (good_) offset_ += static_cast<std::size_t>(count);
    }

    void skipEntries() {
        for (std::uint64_t left = varint(); left > 0 && good_; --left) {
            skip(byte());
            skip(varint());
        }
    }

    /// A tree of names and values, stored in depth-first order.
    void skipTree() {
        skipEntries();
        for (std::uint64_t left = varint(); left > 0 && good_; --left) {
            skip(byte());
            skipEntries();
            left += std::min<std::uint64_t>(varint(), bytes_.size);
        }
    }

    void skipMetadata() {
        for (std::uint64_t left = varint(); left > 0 && good_; --left) {
            varint();
            skipTree();
        }
        skipTree();
    }

    ByteRange bytes_;
    std::size_t offset_ = 0;
    bool good_ = true;
};

/// Decodes one primitive.
class Decoding {
  public:
    Decoding(const GltfSource& source, const gltf::Primitive& primitive, const std::string& where,
             MemoryShare& memory)
        : source_(source), primitive_(primitive), where_(where), memory_(memory) {}

    DracoPrimitive run() {
        decode();
        DracoPrimitive result;
        readIndices(result);
        for (const auto& [name, id] : primitive_.compressed->attributes)
            result.attributes[name] = readAttribute(name, id);
        return result;
    }

  private:
    void decode() {
        const ByteRange bytes = viewBytes(source_, primitive_.compressed->bufferView);
        checkCounts(bytes);
        draco::DecoderBuffer buffer;
        buffer.Init(reinterpret_cast<const char*>(bytes.data), bytes.size);
        draco::Decoder decoder;
        auto decoded = decoder.DecodeMeshFromBuffer(&buffer);
        if (!decoded.ok() || decoded.value() == nullptr) {
            fail(fmt::format("the compressed mesh is damaged ({})",
                             decoded.status().error_msg_string()));
        }
        mesh_ = std::move(decoded).value();
    }

    void checkCounts(const ByteRange& bytes) {
        const auto counts = CountReader(bytes).read();
        if (!counts) fail("the compressed mesh is damaged (no header)");
        const std::uint64_t most = kFreeTriangles + kMaxPerByte * bytes.size;
        if (counts->triangles > most || counts->vertices > most) {
            fail(fmt::format("the compressed mesh claims {} triangles and {} vertices in {} bytes",
                             counts->triangles, counts->vertices, bytes.size));
        }
        // The decoder's own tables of corners and vertices, and the tables in the result.
        constexpr std::uint64_t kTriangle = 128;
        constexpr std::uint64_t kVertex = 64;
        const std::uint64_t tables = primitive_.compressed->attributes.size() * sizeof(float[4]);
        memory_.take(counts->triangles * kTriangle + counts->vertices * (kVertex + tables), where_);
    }

    void readIndices(DracoPrimitive& result) const {
        result.indices.reserve(std::size_t{mesh_->num_faces()} * 3);
        for (draco::FaceIndex f(0); f < mesh_->num_faces(); ++f) {
            for (const draco::PointIndex& point : mesh_->face(f)) {
                if (point.value() >= mesh_->num_points()) fail("a compressed index is damaged");
                result.indices.push_back(point.value());
            }
        }
    }

    FloatTable readAttribute(const std::string& name, int id) const {
        const int number = mesh_->GetAttributeIdByUniqueId(static_cast<std::uint32_t>(id));
        draco::PointAttribute* attribute = number < 0 ? nullptr : mesh_->attribute(number);
        if (attribute == nullptr || attribute->num_components() > 4) {
            fail(fmt::format("the compressed attribute {} is missing", shortened(name)));
        }
        // No accessor has such a type, and the decoder trusts its bytes to be 0 or 1.
        if (attribute->data_type() == draco::DT_BOOL) {
            fail(fmt::format("the compressed attribute {} is of another type", shortened(name)));
        }
        // The accessor, not the compressed data, says whether integers are normalized.
        const auto accessor = primitive_.attributes.find(name);
        if (accessor != primitive_.attributes.end()) {
            attribute->set_normalized(
                gltf::at(source_.document.accessors, accessor->second).normalized);
        }
        FloatTable table;
        table.count = mesh_->num_points();
        table.components = attribute->num_components();
        const auto components = static_cast<std::size_t>(table.components);
        table.values.resize(table.count * components);
        for (draco::PointIndex i(0); i < mesh_->num_points(); ++i)
            readValue(*attribute, i, name, &table.values[i.value() * components]);
        return table;
    }

    void readValue(const draco::PointAttribute& attribute, draco::PointIndex point,
                   const std::string& name, float* to) const {
        const auto components = static_cast<std::int8_t>(attribute.num_components());
        bool good = attribute.is_mapping_identity() || point.value() < attribute.indices_map_size();
        good = good && attribute.ConvertValue<float>(attribute.mapped_index(point), components, to);
        for (int c = 0; c < components; ++c)
            good = good && std::isfinite(to[c]);
        if (!good) fail(fmt::format("the compressed attribute {} is damaged", shortened(name)));
    }

    [[noreturn]] void fail(const std::string& what) const {
        source_.fail(where_ + ": " + what + ": export the file again");
    }

    const GltfSource& source_;
    const gltf::Primitive& primitive_;
    const std::string& where_;
    MemoryShare& memory_;
    std::unique_ptr<draco::Mesh> mesh_;
};

}  // namespace

DracoPrimitive readDraco(const GltfSource& source, const gltf::Primitive& primitive,
                         const std::string& where, MemoryShare& memory) {
    return Decoding(source, primitive, where, memory).run();
}

}  // namespace tavora::studio
