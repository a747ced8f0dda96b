#pragma once

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "studio/scene/gltf/reader.h"
#include "studio/util/error.h"
#include "tests/files/temporary_folder.h"

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
        bytes.resize((bytes.size() + 3) / 4 * 4);
        const std::size_t at = bytes.size();
        const std::size_t size = values.size() * sizeof(T);
        bytes.resize(at + size);
        if (size != 0) std::memcpy(&bytes[at], values.data(), size);
        return add("bufferViews", {{"buffer", 0}, {"byteOffset", at}, {"byteLength", size}});
    }

    /// Adds an accessor of these values in a view of its own; returns its index.
    template <typename T>
    int accessor(const std::vector<T>& values, const std::string& type, bool normalized = false) {
        Json entry = {{"bufferView", view(values)},
                      {"componentType", componentType<T>()},
                      {"count", values.size() / componentsOf(type)},
                      {"type", type}};
        if (normalized) entry["normalized"] = true;
        return add("accessors", entry);
    }

    /// Appends to a top-level list; returns the index there.
    int add(const std::string& list, const Json& entry) {
        document[list].push_back(entry);
        return static_cast<int>(document[list].size()) - 1;
    }

    /// A mesh of one primitive.
    int mesh(const Json& attributes, int indices = -1) {
        Json primitive = {{"attributes", attributes}};
        if (indices >= 0) primitive["indices"] = indices;
        return add("meshes", {{"primitives", Json::array({primitive})}});
    }

    Json& primitive(int mesh) {
        return document["meshes"][static_cast<std::size_t>(mesh)]["primitives"][0];
    }

    /// A node at the top of the scene.
    int root(const Json& node) {
        const int index = add("nodes", node);
        if (!document.contains("scenes")) add("scenes", Json::object());
        document["scenes"][0]["nodes"].push_back(index);
        return index;
    }

    /// A primitive alone on its node, with what stands beside its attributes.
    Scene readPrimitive(const Json& attributes, const Json& members = Json::object()) {
        const int index = mesh(attributes);
        primitive(index).update(members);
        root({{"mesh", index}});
        return read();
    }

    /// The triangle (0,0,0) (1,0,0) (0,1,0) under a node with these members.
    void triangle(Json node = Json::object()) {
        node["mesh"] = mesh({{"POSITION", accessor(corners(), "VEC3")}});
        root(node);
    }

    static std::vector<float> corners() { return {0, 0, 0, 1, 0, 0, 0, 1, 0}; }
    static std::vector<float> upward() { return {0, 0, 1, 0, 0, 1, 0, 0, 1}; }

    /// Writes a .gltf with its buffer beside it.
    std::filesystem::path write(const TemporaryFolder& folder) const {
        Json whole = document;
        if (!bytes.empty() && !whole.contains("buffers")) {
            whole["buffers"] = {{{"uri", "scene.bin"}, {"byteLength", bytes.size()}}};
        }
        putBytes(folder / "scene.bin", bytes);
        putBytes(folder / "scene.gltf", whole.dump());
        return folder / "scene.gltf";
    }

    /// Writes a .glb.
    std::filesystem::path writeBinary(const TemporaryFolder& folder) const {
        Json whole = document;
        if (!whole.contains("buffers")) whole["buffers"] = {{{"byteLength", bytes.size()}}};
        putBytes(folder / "scene.glb", glb(whole.dump(), bytes));
        return folder / "scene.glb";
    }

    Scene read() const {
        const TemporaryFolder folder;
        return readGltf(write(folder));
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

  private:
    template <typename T>
    static int componentType() {
        if constexpr (std::is_same_v<T, std::int8_t>) return 5120;
        if constexpr (std::is_same_v<T, std::uint8_t>) return 5121;
        if constexpr (std::is_same_v<T, std::int16_t>) return 5122;
        if constexpr (std::is_same_v<T, std::uint16_t>) return 5123;
        if constexpr (std::is_same_v<T, std::uint32_t>) return 5125;
        return 5126;
    }

    static std::size_t componentsOf(const std::string& type) {
        if (type == "MAT4") return 16;
        return type == "SCALAR" ? 1 : static_cast<std::size_t>(type.back() - '0');
    }
};

inline const Mesh& firstMesh(const Scene& scene) {
    return *scene.objects.at(0)->parts.at(0).mesh;
}

/// The text of the Fault::Scene that reading gives, or "" when it reads.
inline std::string refusalOf(const std::filesystem::path& file) {
    try {
        readGltf(file);
    } catch (const Error& error) {
        return error.what();
    }
    return "";
}

}  // namespace tavora::studio
