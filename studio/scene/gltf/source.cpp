#include "studio/scene/gltf/source.h"

#include <algorithm>
#include <cstring>
#include <fmt/format.h>
#include <string_view>

#include "studio/files/standard_streams.h"
#include "studio/scene/gltf/container.h"
#include "studio/scene/gltf/extensions.h"
#include "studio/scene/gltf/resources.h"
#include "studio/scene/gltf/shape.h"
#include "studio/util/error.h"
#include "studio/util/json_text.h"
#include "studio/util/text.h"

namespace tavora::studio {
namespace {

using Json = nlohmann::ordered_json;
namespace fs = std::filesystem;

constexpr int kDeepestJson = 128;

/// Brackets inside brackets, before any parser walks into them.
int depthOf(std::string_view json) {
    int depth = 0;
    int deepest = 0;
    bool text = false;
    for (std::size_t i = 0; i < json.size(); ++i) {
        const char c = json[i];
        if (text) {
            if (c == '\\') ++i;
            if (c == '"') text = false;
        } else if (c == '"') {
            text = true;
        } else if (c == '{' || c == '[') {
            deepest = std::max(deepest, ++depth);
        } else if (c == '}' || c == ']') {
            --depth;
        }
    }
    return deepest;
}

Json parseDocument(const GltfSource& source, const std::string& text) {
    if (text.empty()) source.fail("is empty: export the file again");
    if (depthOf(text) > kDeepestJson) {
        source.fail(
            fmt::format("its JSON is nested deeper than {}: export the file again", kDeepestJson));
    }
    Json document;
    try {
        document = parseJson(text, source.path);
    } catch (const Error& error) {
        throw Error(Fault::Scene, oneLine(error.what()) + ": export the file again");
    }
    if (!document.is_object()) source.fail("is not glTF: its JSON is no object");
    return document;
}

void checkExtensions(const GltfSource& source) {
    const auto required = source.document.find("extensionsRequired");
    if (required == source.document.end() || !required->is_array()) return;
    for (const Json& name : *required) {
        const std::string text = name.is_string() ? name.get<std::string>() : name.dump();
        if (canDoWithout(supportOf(text))) continue;
        source.fail(fmt::format(
            "needs the extension {}, which is not supported: export the scene without it", text));
    }
}

void checkVersion(const GltfSource& source) {
    const auto asset = source.document.find("asset");
    const bool known = asset != source.document.end() && asset->is_object() &&
                       asset->contains("version") && (*asset)["version"].is_string();
    const std::string version = known ? (*asset)["version"].get<std::string>() : "";
    if (version.substr(0, 2) == "2.") return;
    source.fail(version.empty()
                    ? "is not glTF: it has no asset.version, choose another file"
                    : "is glTF " + version + ", only 2.x can be read: convert it to 2.0");
}

/// The first chunk after the JSON, when it is the binary one.
std::string_view binaryChunk(const GltfSource& source, std::string_view chunks) {
    constexpr std::size_t kHeader = 8;
    if (chunks.size() < kHeader || chunks.substr(4, 4) != std::string_view("BIN\0", 4)) return {};
    std::uint32_t size = 0;
    for (std::size_t i = 4; i-- > 0;)
        size = size << 8U | static_cast<unsigned char>(chunks[i]);
    if (size > chunks.size() - kHeader) {
        source.fail("its binary chunk is truncated: export or copy the file again");
    }
    return chunks.substr(kHeader, size);
}

bool isCompressed(const Json& primitive) {
    const auto extensions = primitive.find("extensions");
    return extensions != primitive.end() && extensions->contains("KHR_draco_mesh_compression");
}

/// The members that the model is made from. Compressed primitives lose their
/// indices: their accessors have no buffer view, which tinygltf refuses, and
/// the indices come out of the compressed mesh.
Json modelDocument(const Json& document) {
    Json reduced = {{"asset", {{"version", "2.0"}}}};
    for (const char* name : {"bufferViews", "accessors", "meshes", "nodes", "scenes", "scene",
                             "skins", "samplers", "textures", "cameras", "animations"}) {
        const auto found = document.find(name);
        if (found != document.end() && !found->is_null()) reduced[name] = *found;
    }
    const auto lights = "/extensions/KHR_lights_punctual"_json_pointer;
    if (document.contains(lights)) reduced[lights] = document.at(lights);
    if (!reduced.contains("meshes")) return reduced;
    for (Json& mesh : reduced["meshes"]) {
        for (Json& primitive : mesh["primitives"]) {
            if (isCompressed(primitive)) primitive.erase("indices");
        }
    }
    return reduced;
}

void makeModel(GltfSource& source) {
    const std::string text = modelDocument(source.document).dump();
    tinygltf::TinyGLTF loader;
    std::string error;
    std::string warning;
    const bool read = loader.LoadASCIIFromString(&source.model, &error, &warning, text.data(),
                                                 static_cast<unsigned>(text.size()), "");
    if (read) return;
    const std::string line = error.substr(0, error.find('\n'));
    source.fail((line.empty() ? "is damaged" : line) + ": export the file again");
}

}  // namespace

void GltfSource::fail(const std::string& what) const {
    throw Error(Fault::Scene, oneLine(path + ": " + what));
}

GltfSource readGltfSource(const fs::path& file) {
    GltfSource source;
    source.path = shownName(file);
    source.stream = isStream(file);
    const GltfContainer container = readContainer(file);
    source.document = parseDocument(source, container.json);
    checkVersion(source);
    checkExtensions(source);
    checkShape(source);
    makeModel(source);
    readBuffers(source, file.parent_path(), binaryChunk(source, container.chunks));
    readImageFiles(source, file.parent_path());
    return source;
}

}  // namespace tavora::studio
