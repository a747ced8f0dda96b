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

/// Bytes that the document takes once it is read, as values and as structures, rather too
/// many: each value has a bracket, a comma or a colon beside it, each structure is an object.
std::uint64_t documentSize(std::string_view text) {
    constexpr std::uint64_t kValue = 64;
    constexpr std::uint64_t kStructure = 512;
    std::uint64_t bytes = text.size();
    for (const char c : text) {
        if (c == ',' || c == ':' || c == '[') bytes += kValue;
        if (c == '{') bytes += kStructure;
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
        if (canDoWithout(supportOf(name))) continue;
        source.fail(
            fmt::format("needs the extension {}, which is not supported: export the "
                        "scene without it",
                        shortened(name)));
    }
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

}  // namespace

void GltfSource::fail(const std::string& what) const {
    throw Error(Fault::Scene, path + ": " + what);
}

std::span<const std::uint8_t> GltfSource::hold(std::string bytes) {
    const std::string& kept = held.emplace_back(std::move(bytes));
    bytesHeld += kept.size();
    return {reinterpret_cast<const std::uint8_t*>(kept.data()), kept.size()};
}

GltfSource readGltfSource(const fs::path& file, const ReadOptions& options) {
    GltfSource source;
    source.path = shownName(file);
    source.stream = isStream(file);
    source.memory = std::make_shared<MemoryBudget>(source.path, options.memory);
    source.share = MemoryShare(source.memory);
    std::error_code unknown;
    const std::uintmax_t size = fs::file_size(file, unknown);
    if (!unknown) source.share.take(2 * size, "the file itself");
    GltfContainer container = readContainer(file);
    if (unknown) source.share.take(container.json.size() + container.chunks.size(), "its bytes");
    source.share.take(documentSize(container.json), "its JSON");
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
