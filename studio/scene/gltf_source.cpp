#include "studio/scene/gltf_source.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <fmt/format.h>
#include <fstream>
#include <optional>
#include <string_view>

#include "studio/scene/gltf_container.h"
#include "studio/scene/json_text.h"
#include "studio/scene/scene_error.h"

namespace tavora::studio {
namespace {

using Json = nlohmann::ordered_json;
namespace fs = std::filesystem;

constexpr int kDeepestJson = 128;

constexpr std::array<std::string_view, 17> kSupported = {
    "EXT_texture_webp",
    "KHR_draco_mesh_compression",
    "KHR_lights_punctual",
    "KHR_materials_clearcoat",
    "KHR_materials_diffuse_transmission",
    "KHR_materials_emissive_strength",
    "KHR_materials_ior",
    "KHR_materials_iridescence",
    "KHR_materials_pbrSpecularGlossiness",
    "KHR_materials_sheen",
    "KHR_materials_specular",
    "KHR_materials_transmission",
    "KHR_materials_unlit",
    "KHR_materials_variants",
    "KHR_materials_volume",
    "KHR_mesh_quantization",
    "KHR_texture_transform",
};

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

std::optional<std::string> percentDecoded(std::string_view uri) {
    std::string plain;
    for (std::size_t i = 0; i < uri.size(); ++i) {
        if (uri[i] != '%') {
            plain += uri[i];
            continue;
        }
        if (i + 2 >= uri.size() || !std::isxdigit(static_cast<unsigned char>(uri[i + 1])) ||
            !std::isxdigit(static_cast<unsigned char>(uri[i + 2]))) {
            return std::nullopt;
        }
        plain += static_cast<char>(std::stoi(std::string(uri.substr(i + 1, 2)), nullptr, 16));
        i += 2;
    }
    return plain;
}

/// Whether a URI names a file in the scene's folder or below it.
bool staysInside(std::string_view uri) {
    const std::optional<std::string> plain = percentDecoded(uri);
    if (!plain || plain->empty() || plain->front() == '/' || plain->front() == '~') return false;
    if (plain->find_first_of(std::string_view(":\\\0", 3)) != std::string::npos) return false;
    const fs::path path(*plain);
    return std::none_of(path.begin(), path.end(), [](const fs::path& p) { return p == ".."; });
}

bool isData(std::string_view uri) {
    return uri.substr(0, 5) == "data:";
}

void checkUris(const GltfSource& source, const char* kind) {
    const auto list = source.document.find(kind);
    if (list == source.document.end() || !list->is_array()) return;
    for (std::size_t i = 0; i < list->size(); ++i) {
        const Json& entry = (*list)[i];
        if (!entry.is_object() || !entry.contains("uri")) continue;
        const Json& uri = entry["uri"];
        const std::string text = uri.is_string() ? uri.get<std::string>() : "";
        if (isData(text) || staysInside(text)) continue;
        source.fail(
            fmt::format("{}[{}] names the file \"{}\": only files in the scene's own folder are "
                        "read, copy it there",
                        kind, i, text.substr(0, 80)));
    }
}

void checkExtensions(const GltfSource& source) {
    const auto required = source.document.find("extensionsRequired");
    if (required == source.document.end() || !required->is_array()) return;
    for (const Json& name : *required) {
        const std::string text = name.is_string() ? name.get<std::string>() : name.dump();
        if (std::find(kSupported.begin(), kSupported.end(), text) != kSupported.end()) continue;
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
    source.fail(version.empty() ? "is not glTF: it has no asset.version"
                                : "is glTF " + version + ", only 2.x can be read: convert it");
}

// --- what tinygltf reads files through ---

bool fileExists(const std::string& file, void* /*user*/) {
    std::error_code error;
    return fs::is_regular_file(file, error);
}

std::string sameName(const std::string& file, void* /*user*/) {
    return file;
}

bool readWholeFile(std::vector<unsigned char>* bytes, std::string* error, const std::string& file,
                   void* /*user*/) {
    std::ifstream in(file, std::ios::binary);
    bytes->assign(std::istreambuf_iterator<char>(in), {});
    if (in && !bytes->empty()) return true;
    if (error != nullptr) *error += "cannot read " + file;
    return false;
}

bool writeNothing(std::string* /*error*/, const std::string& /*file*/,
                  const std::vector<unsigned char>& /*bytes*/, void* /*user*/) {
    return false;
}

/// Keeps an image file's bytes for later.
bool keepImageFile(tinygltf::Image* /*image*/, int index, std::string* /*error*/,
                   std::string* /*warning*/, int /*width*/, int /*height*/,
                   const unsigned char* bytes, int size, void* user) {
    auto& files = *static_cast<std::vector<std::vector<std::uint8_t>>*>(user);
    if (index < 0 || size < 0) return false;
    const auto at = static_cast<std::size_t>(index);
    if (files.size() <= at) files.resize(at + 1);
    files[at].assign(bytes, bytes + size);
    return true;
}

std::string firstLine(const std::string& text) {
    const std::string line = text.substr(0, text.find('\n'));
    return line.empty() ? "the file is damaged" : line;
}

bool isCompressed(const Json& primitive) {
    return primitive.is_object() && primitive.contains("extensions") &&
           primitive["extensions"].is_object() &&
           primitive["extensions"].contains("KHR_draco_mesh_compression");
}

/// The document as tinygltf takes it: it refuses index accessors without a
/// buffer view, which compressed primitives have. Their indices are not needed.
void dropCompressedIndices(const Json& document, GltfContainer& container) {
    if (!document.contains("meshes") || !document["meshes"].is_array()) return;
    Json changed = document;
    bool any = false;
    for (Json& mesh : changed["meshes"]) {
        if (!mesh.is_object() || !mesh.contains("primitives")) continue;
        for (Json& primitive : mesh["primitives"]) {
            if (isCompressed(primitive)) any = primitive.erase("indices") != 0 || any;
        }
    }
    if (any) container.json = changed.dump();
}

void parse(GltfSource& source, const GltfContainer& container, const fs::path& file) {
    tinygltf::TinyGLTF loader;
    loader.SetImageLoader(keepImageFile, &source.imageFiles);
    loader.SetFsCallbacks({fileExists, sameName, readWholeFile, writeNothing, nullptr});
    std::string error;
    std::string warning;
    bool read = false;
    if (container.binary) {
        const std::string bytes = containerBytes(container);
        read = loader.LoadBinaryFromMemory(
            &source.model, &error, &warning, reinterpret_cast<const unsigned char*>(bytes.data()),
            static_cast<unsigned>(bytes.size()), file.parent_path().string());
    } else {
        read = loader.LoadASCIIFromString(&source.model, &error, &warning, container.json.data(),
                                          static_cast<unsigned>(container.json.size()),
                                          file.parent_path().string());
    }
    if (!read) source.fail(firstLine(error) + ": export the file again");
    source.imageFiles.resize(source.model.images.size());
}

}  // namespace

void GltfSource::fail(const std::string& what) const {
    throw SceneError(path + ": " + what);
}

GltfSource readGltfSource(const fs::path& file) {
    GltfSource source;
    source.path = file.string();
    GltfContainer container = readContainer(file);
    if (depthOf(container.json) > kDeepestJson) {
        source.fail(
            fmt::format("its JSON is nested deeper than {}: export the file again", kDeepestJson));
    }
    source.document = parseJson(container.json, source.path);
    if (!source.document.is_object()) source.fail("is not glTF: its JSON is no object");
    checkVersion(source);
    checkExtensions(source);
    checkUris(source, "buffers");
    checkUris(source, "images");
    dropCompressedIndices(source.document, container);
    try {
        parse(source, container, file);
    } catch (const SceneError&) {
        throw;
    } catch (const std::exception& error) {
        source.fail(std::string("cannot be read (") + error.what() + "): export the file again");
    }
    return source;
}

}  // namespace tavora::studio
