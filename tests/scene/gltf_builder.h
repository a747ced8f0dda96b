#pragma once

#include <cstring>
#include <type_traits>
#include <vector>

#include <nlohmann/json.hpp>

#include "studio/scene/gltf/reader.h"
#include "tests/files/temporary_folder.h"
#include "tests/support/refusal.h"

namespace tavora::studio {

using Json = nlohmann::ordered_json;

/// A JSON value that reads like JSON: R"({"a": 1})"_j.
inline Json operator""_j(const char* text, std::size_t size) {
    return Json::parse(text, text + size);
}

/// A half-transparent red pixel.
inline constexpr const char* kRedPng =
    "data:image/png;base64,iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJAAAADUlEQVR42mP8z8BQDwAEhQGA"
    "hKmMIQAAAABJRU5ErkJggg==";

/// Builds a small scene: one buffer that grows, and the document, open to any
/// change before it is written.
class GltfBuilder {
  public:
    Json document = R"({"asset": {"version": "2.0"}})"_j;
    std::string bytes;  ///< of buffer 0

    /// Adds a buffer view of these values; returns its index.
    template <typename T>
    int view(const std::vector<T>& values) {
        const std::size_t at = (bytes.size() + 3) / 4 * 4, size = values.size() * sizeof(T);
        bytes.resize(at + size);
        std::memcpy(bytes.data() + at, values.data(), size);
        return add("bufferViews", {{"buffer", 0}, {"byteOffset", at}, {"byteLength", size}});
    }

    /// Adds an accessor of these values in a view of its own; returns its index.
    template <typename T>
    int accessor(const std::vector<T>& values, const std::string& type, bool normalized = false) {
        const int digit = type.back() - '0';  // of VEC2 and others
        const int components = type == "MAT4" ? 16 : type == "SCALAR" ? 1 : digit;
        const std::size_t count = values.size() / static_cast<std::size_t>(components);
        Json entry = {{"bufferView", view(values)}, {"componentType", componentType<T>}};
        entry.update({{"count", count}, {"type", type}, {"normalized", normalized}});
        return add("accessors", entry);
    }

    /// Gives the vertices of the first mesh an attribute.
    template <typename T>
    void attribute(const char* name, const std::vector<T>& values, const std::string& type) {
        primitive()["attributes"][name] = accessor(values, type);
    }

    /// Appends to a top-level list; returns the index there.
    int add(const std::string& list, const Json& entry) {
        document[list].push_back(entry);
        return static_cast<int>(document[list].size()) - 1;
    }

    /// A mesh of one primitive, with what stands beside its attributes.
    int mesh(const Json& attributes, Json members = Json::object()) {
        members["attributes"] = attributes;
        return add("meshes", {{"primitives", Json::array({members})}});
    }

    Json& primitive(int mesh = 0) {
        return document["meshes"][static_cast<std::size_t>(mesh)]["primitives"][0];
    }

    /// A node at the top of the scene.
    int root(const Json& node) {
        const int index = add("nodes", node);
        document["scenes"][0]["nodes"].push_back(index);
        return index;
    }

    /// A mesh alone on its node.
    Scene readPrimitive(const Json& attributes, const Json& members = Json::object()) {
        root({{"mesh", mesh(attributes, members)}});
        return read();
    }

    /// The triangle (0,0,0) (1,0,0) (0,1,0) under a node with these members.
    void triangle(Json node = Json::object()) {
        node["mesh"] = mesh({{"POSITION", accessor(corners(), "VEC3")}});
        root(node);
    }

    static std::vector<float> corners() { return {0, 0, 0, 1, 0, 0, 0, 1, 0}; }
    static std::vector<float> upward() { return {0, 0, 1, 0, 0, 1, 0, 0, 1}; }

    /// Writes a .gltf with its buffer beside it, or a .glb.
    std::filesystem::path write(const TemporaryFolder& folder, bool binary = false) const {
        Json whole = document;
        Json buffer = {{"byteLength", bytes.size()}};
        if (!binary) buffer["uri"] = "scene.bin";
        if (!bytes.empty() && !whole.contains("buffers")) whole["buffers"] = {buffer};
        putBytes(folder / "scene.bin", bytes);
        const auto file = folder / (binary ? "scene.glb" : "scene.gltf");
        putBytes(file, binary ? glb(whole.dump(), bytes) : whole.dump());
        return file;
    }

    Scene read() const {
        const TemporaryFolder folder;
        return readGltf(write(folder));
    }

    /// What reading says against it; "" when it reads.
    std::string refused() const {
        return refusal([this] { read(); });
    }

    /// A .glb of these two chunks.
    static std::string glb(std::string json, std::string binary) {
        json.resize((json.size() + 3) / 4 * 4, ' ');
        binary.resize((binary.size() + 3) / 4 * 4);
        return "glTF" + word(2) + word(28 + json.size() + binary.size()) + word(json.size()) +
               "JSON" + json + word(binary.size()) + std::string("BIN\0", 4) + binary;
    }

    static std::string word(std::size_t value) {
        std::string four;
        for (unsigned i = 0; i < 4; ++i)
            four += static_cast<char>((value >> (8 * i)) & 0xffU);
        return four;
    }

    template <typename T>
    static constexpr int componentType = std::is_same_v<T, float>
                                             ? 5126
                                             : 5119 + (sizeof(T) == 4
                                                           ? 6
                                                           : 2 * static_cast<int>(sizeof(T)) -
                                                                 (std::is_signed_v<T> ? 1 : 0));
};

inline const Mesh& firstMesh(const Scene& scene) {
    return *scene.objects.at(0)->parts.at(0).mesh;
}

/// A scene in which every part that is read occurs.
inline GltfBuilder fullScene() {
    using Floats = std::vector<float>;
    GltfBuilder file;
    file.document = R"({"asset": {"version": "2.0"}, "scenes": [{"nodes": [0, 1, 2]}], "nodes": [
        {"mesh": 0, "skin": 0}, {"translation": [0, 0, 0], "rotation": [0, 0, 0, 1],
            "scale": [1, 1, 1], "extensions": {"KHR_lights_punctual": {"light": 0},
                                               "KHR_node_visibility": {"visible": true}}},
        {"matrix": [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1], "camera": 0}],
      "meshes": [{"weights": [0.5], "primitives": [{"attributes": {"POSITION": 0, "NORMAL": 1,
            "TEXCOORD_0": 2, "JOINTS_0": 3, "WEIGHTS_0": 4}, "indices": 5,
            "targets": [{"POSITION": 6}], "material": 0}]}],
      "skins": [{"joints": [1], "inverseBindMatrices": 7}],
      "cameras": [{"type": "perspective", "name": "C",
            "perspective": {"yfov": 0.8, "znear": 0.1, "aspectRatio": 1}},
        {"type": "orthographic", "orthographic": {"xmag": 1, "ymag": 2}}],
      "extensions": {"KHR_lights_punctual": {"lights": [{"type": "spot", "name": "L",
            "color": [1, 1, 1], "intensity": 1, "range": 9,
            "spot": {"innerConeAngle": 0, "outerConeAngle": 1}}]}},
      "textures": [{"source": 0, "sampler": 0}],
      "samplers": [{"wrapS": 10497, "wrapT": 10497, "magFilter": 9729, "minFilter": 9987}],
      "materials": [{"name": "M", "doubleSided": true, "alphaMode": "MASK", "alphaCutoff": 0.5,
        "emissiveFactor": [0, 0, 0], "pbrMetallicRoughness": {"baseColorFactor": [1, 1, 1, 1],
            "metallicFactor": 0, "roughnessFactor": 1, "baseColorTexture": {"index": 0,
                "texCoord": 0, "extensions": {"KHR_texture_transform":
                    {"offset": [0, 0], "rotation": 0, "scale": [1, 1], "texCoord": 0}}}},
        "extensions": {"KHR_materials_emissive_strength": {"emissiveStrength": 1},
            "KHR_materials_transmission": {"transmissionFactor": 0.5},
            "KHR_materials_pbrSpecularGlossiness": {"diffuseFactor": [1, 1, 1, 1]}}}],
      "animations": [{"name": "A", "channels": [
            {"sampler": 0, "target": {"node": 1, "path": "translation"}},
            {"sampler": 1, "target": {"node": 0, "path": "weights"}},
            {"sampler": 2, "target": {"path": "pointer", "extensions": {"KHR_animation_pointer":
                {"pointer": "/cameras/0/perspective/yfov"}}}}], "samplers": [
            {"input": 8, "output": 9}, {"input": 8, "output": 10, "interpolation": "STEP"},
            {"input": 10, "output": 11, "interpolation": "CUBICSPLINE"}]}]})"_j;
    file.add("images", {{"uri", kRedPng}, {"name", "a"}});
    file.accessor(GltfBuilder::corners(), "VEC3");  // accessor 0
    file.accessor(GltfBuilder::upward(), "VEC3");
    file.accessor(Floats{0, 0, 1, 0, 0, 1}, "VEC2");
    file.accessor(std::vector<std::uint8_t>(12, 0), "VEC4");
    file.accessor(Floats{1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0}, "VEC4");
    file.accessor(std::vector<std::uint16_t>{0, 1, 2}, "SCALAR");
    file.accessor(GltfBuilder::upward(), "VEC3");  // 6, replaced in part below
    file.accessor(Floats{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}, "MAT4");
    file.accessor(Floats{0, 1}, "SCALAR");  // 8, key times
    file.accessor(Floats{0, 0, 0, 1, 0, 0}, "VEC3");
    file.accessor(Floats{0.5F, 2}, "SCALAR");
    file.accessor(Floats{0, 1, 0, 0, 1, 0}, "SCALAR");
    Json& sparse = file.document["accessors"][6]["sparse"] =
        R"({"count": 1, "indices": {"componentType": 5123}, "values": {"byteOffset": 0}})"_j;
    sparse["indices"]["bufferView"] = file.view(std::vector<std::uint16_t>{1});
    sparse["values"]["bufferView"] = file.view(Floats{0, 0, 2});
    file.document["buffers"] = {{{"uri", "scene.bin"}, {"byteLength", file.bytes.size()}}};
    return file;
}

}  // namespace tavora::studio
