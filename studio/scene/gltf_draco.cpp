#include "studio/scene/gltf_draco.h"

#include <cmath>
#include <draco/compression/decode.h>
#include <fmt/format.h>
#include <memory>

namespace tavora::studio {
namespace {

constexpr const char* kExtension = "KHR_draco_mesh_compression";

FloatTable tableOf(const draco::Mesh& mesh, const draco::PointAttribute& attribute) {
    FloatTable table;
    table.count = mesh.num_points();
    table.components = attribute.num_components();
    table.values.resize(table.count * static_cast<std::size_t>(table.components));
    for (draco::PointIndex i(0); i < mesh.num_points(); ++i) {
        attribute.ConvertValue<float>(
            attribute.mapped_index(i), static_cast<std::int8_t>(table.components),
            &table.values[i.value() * static_cast<std::size_t>(table.components)]);
    }
    return table;
}

std::unique_ptr<draco::Mesh> decode(const GltfSource& source, int view, const std::string& where) {
    const ByteRange bytes = viewBytes(source, view);
    draco::DecoderBuffer buffer;
    buffer.Init(reinterpret_cast<const char*>(bytes.data), bytes.size);
    draco::Decoder decoder;
    auto decoded = decoder.DecodeMeshFromBuffer(&buffer);
    if (!decoded.ok()) {
        source.fail(fmt::format("{}: the compressed mesh is damaged ({}): export the file again",
                                where, decoded.status().error_msg_string()));
    }
    return std::move(decoded).value();
}

bool allFinite(const FloatTable& table) {
    for (float value : table.values) {
        if (!std::isfinite(value)) return false;
    }
    return true;
}

}  // namespace

bool isDraco(const tinygltf::Primitive& primitive) {
    return primitive.extensions.count(kExtension) != 0;
}

int dracoView(const tinygltf::Primitive& primitive) {
    return isDraco(primitive)
               ? primitive.extensions.at(kExtension).Get("bufferView").GetNumberAsInt()
               : -1;
}

DracoPrimitive readDraco(const GltfSource& source, const tinygltf::Primitive& primitive,
                         const std::string& where) {
    const tinygltf::Value& extension = primitive.extensions.at(kExtension);
    const auto mesh = decode(source, dracoView(primitive), where);

    DracoPrimitive result;
    result.indices.reserve(std::size_t{mesh->num_faces()} * 3);
    for (draco::FaceIndex f(0); f < mesh->num_faces(); ++f) {
        for (const draco::PointIndex& point : mesh->face(f))
            result.indices.push_back(point.value());
    }
    const tinygltf::Value& attributes = extension.Get("attributes");
    for (const std::string& name : attributes.Keys()) {
        const int id = attributes.Get(name).GetNumberAsInt();
        const draco::PointAttribute* attribute =
            id < 0 ? nullptr : mesh->GetAttributeByUniqueId(static_cast<std::uint32_t>(id));
        if (attribute == nullptr || attribute->num_components() > 4) {
            source.fail(fmt::format(
                "{}: its compressed attribute {} is missing: export the file again", where, name));
        }
        FloatTable table = tableOf(*mesh, *attribute);
        if (!allFinite(table))
            source.fail(where + ": holds values that are not numbers: repair the model");
        result.attributes[name] = std::move(table);
    }
    return result;
}

}  // namespace tavora::studio
