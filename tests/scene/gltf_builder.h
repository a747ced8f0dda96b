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

inline Json operator""_j(const char* text, std::size_t size) {
    return Json::parse(text, text + size);
}

/// A half-transparent red pixel.
inline constexpr const char* kRedPng =
    "data:image/png;base64,iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJAAAADUlEQVR42mP8z8BQDwAEhQGA"
    "hKmMIQAAAABJRU5ErkJggg==";

/// Builds a small scene: one buffer that grows, and the document. What is added to a
/// list has the index that is returned.
class GltfBuilder {
  public:
    Json document = R"({"asset": {"version": "2.0"}})"_j;
    std::string bytes;  ///< of buffer 0

    template <typename T>
    int view(const std::vector<T>& values) {
        const std::size_t at = (bytes.size() + 3) / 4 * 4, size = values.size() * sizeof(T);
        bytes.resize(at + size);
        std::memcpy(bytes.data() + at, values.data(), size);
        return add("bufferViews", {{"buffer", 0}, {"byteOffset", at}, {"byteLength", size}});
    }

    /// In a view of its own.
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

    int add(const std::string& list, const Json& entry) {
        document[list].push_back(entry);
        return static_cast<int>(document[list].size()) - 1;
    }

    /// A mesh of one primitive; `members` stand beside its attributes.
    int mesh(const Json& attributes, Json members = Json::object()) {
        members["attributes"] = attributes;
        return add("meshes", {{"primitives", Json::array({members})}});
    }

    Json& primitive(int mesh = 0) {
        return document["meshes"][static_cast<std::size_t>(mesh)]["primitives"][0];
    }

    int root(const Json& node) {
        const int index = add("nodes", node);
        document["scenes"][0]["nodes"].push_back(index);
        return index;
    }

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
        if (!bytes.empty() && !whole.contains("buffers")) whole["buffers"] = Json::array({buffer});
        if (!binary) putBytes(folder / "scene.bin", bytes);
        const auto file = folder / (binary ? "scene.glb" : "scene.gltf");
        putBytes(file, binary ? glb(whole.dump(), bytes) : whole.dump());
        return file;
    }

    Scene read() const {
        const TemporaryFolder folder;
        return readGltf(write(folder));
    }

    std::string refused() const {
        return refusal([this] { read(); });
    }

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

}  // namespace tavora::studio
