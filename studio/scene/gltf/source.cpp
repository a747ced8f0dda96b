#include "studio/scene/gltf/source.h"

#include <fmt/format.h>
#include <string_view>
#include <system_error>

#include "studio/files/standard_streams.h"
#include "studio/scene/gltf/container.h"
#include "studio/scene/gltf/document_reader.h"
#include "studio/scene/gltf/extensions.h"
#include "studio/scene/gltf/resources.h"
#include "studio/util/digest.h"
#include "studio/util/error.h"
#include "studio/util/json_text.h"
#include "studio/util/text.h"

namespace tavora::studio {
namespace {

namespace fs = std::filesystem;

/// An upper estimate of the bytes that the JSON and the document take once they are read:
/// each value follows a bracket, a comma or a colon, and each structure is an object.
std::uint64_t documentSize(std::string_view text) {
    constexpr std::uint64_t kValueBytes = 64;
    constexpr std::uint64_t kStructureBytes = 512;
    std::uint64_t bytes = text.size();
    for (const char c : text) {
        if (c == ',' || c == ':' || c == '[') bytes += kValueBytes;
        if (c == '{') bytes += kStructureBytes;
    }
    return bytes;
}

gltf::Json parseDocument(const GltfSource& source, const std::string& text) {
    if (text.empty()) source.fail("is empty: export the file again");
    gltf::Json json;
    try {
        json = parseJson(text, source.path);
    } catch (const Error& error) {
        throw Error(Fault::Scene, std::string(error.what()) + ": export the file again");
    }
    if (!json.is_object()) source.fail("is not glTF: its JSON is no object");
    return json;
}

void checkPreamble(const GltfSource& source) {
    const gltf::Preamble preamble = gltf::readPreamble(source.json, source.path);
    if (preamble.version.empty())
        source.fail("is not glTF: it has no asset.version, choose another file");
    if (!preamble.version.starts_with("2.")) {
        source.fail(fmt::format("is glTF {}, only 2.x can be read: convert it to 2.0",
                                shortened(preamble.version)));
    }
    for (const std::string_view name : preamble.extensionsRequired) {
        if (canRead(supportOf(name))) continue;
        source.fail(
            fmt::format("needs the extension {}, which is not supported: export the "
                        "scene without it",
                        shortened(name)));
    }
}

/// The binary chunk, which may only be the first one after the JSON; empty if it is not.
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

}  // namespace

void GltfSource::fail(const std::string& what) const {
    throw Error(Fault::Scene, path + ": " + what);
}

std::span<const std::uint8_t> GltfSource::hold(std::string bytes) {
    const std::string& stored = held.emplace_back(std::move(bytes));
    totalBytes += stored.size();
    return {reinterpret_cast<const std::uint8_t*>(stored.data()), stored.size()};
}

GltfSource readGltfSource(const fs::path& file, const ReadOptions& options) {
    GltfSource source;
    source.path = shownName(file);
    source.stream = isStream(file);
    source.memory = std::make_shared<MemoryBudget>(source.path, options.memory);
    source.memoryShare = MemoryShare(source.memory);
    std::error_code sizeError;
    const std::uintmax_t size = fs::file_size(file, sizeError);
    if (!sizeError) source.memoryShare.take(2 * size, "the file itself");
    GltfContainer container = readContainer(file);
    if (sizeError)
        source.memoryShare.take(container.json.size() + container.chunks.size(), "its bytes");
    source.memoryShare.take(documentSize(container.json), "its JSON");
    source.json = parseDocument(source, container.json);
    checkPreamble(source);
    source.document = gltf::readDocument(source.json, source.path);
    source.hold(std::move(container.chunks));
    readResources(source, {file.parent_path(), options.outside},
                  binaryChunk(source, source.held.front()));
    Digest digest;
    digest.add(container.json);
    for (const std::string& bytes : source.held)
        digest.add(bytes);
    source.digest = digest.text();
    return source;
}

}  // namespace tavora::studio
