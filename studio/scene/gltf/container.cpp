#include "studio/scene/gltf/container.h"

#include <cstdint>
#include <fmt/format.h>
#include <limits>
#include <string_view>
#include <system_error>

#include "studio/files/standard_streams.h"
#include "studio/files/whole_file.h"
#include "studio/util/error.h"

namespace tavora::studio {
namespace {

constexpr std::string_view kMagic = "glTF";
constexpr std::string_view kJsonType = "JSON";
constexpr std::size_t kHeaderSize = 12;
constexpr std::size_t kChunkHeaderSize = 8;
constexpr std::size_t kMostBytes = std::numeric_limits<std::uint32_t>::max();

std::uint32_t wordAt(std::string_view bytes, std::size_t offset) {
    std::uint32_t word = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        word |= static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[offset + i]))
                << (8 * i);
    }
    return word;
}

std::string wordBytes(std::size_t word) {
    std::string bytes;
    for (std::size_t i = 0; i < 4; ++i)
        bytes += static_cast<char>((word >> (8 * i)) & 0xffU);
    return bytes;
}

[[noreturn]] void damaged(const std::filesystem::path& file, const char* what) {
    throw Error(Fault::Scene, fmt::format("{}: {}; export it again", shownName(file), what));
}

// The JSON chunk must come first; what follows must be whole chunks.
GltfContainer split(const std::filesystem::path& file, std::string_view bytes) {
    if (bytes.size() < kHeaderSize + kChunkHeaderSize) damaged(file, "is a truncated .glb");
    if (wordAt(bytes, 4) != 2) damaged(file, "is a .glb of another version than 2");
    const std::size_t length = wordAt(bytes, 8);
    if (length > bytes.size()) damaged(file, "is a truncated .glb");
    if (length < kHeaderSize + kChunkHeaderSize) damaged(file, "is a .glb with a wrong length");
    bytes = bytes.substr(0, length);
    const std::size_t jsonSize = wordAt(bytes, kHeaderSize);
    const std::size_t jsonStart = kHeaderSize + kChunkHeaderSize;
    const bool jsonFirst = bytes.substr(kHeaderSize + 4, 4) == kJsonType;
    if (!jsonFirst || jsonSize > length - jsonStart) damaged(file, "has no whole JSON chunk");
    GltfContainer container{true, std::string(bytes.substr(jsonStart, jsonSize)),
                            std::string(bytes.substr(jsonStart + jsonSize))};
    container.json.erase(container.json.find_last_not_of(std::string_view(" \0\n", 3)) + 1);
    return container;
}

}  // namespace

std::string shownName(const std::filesystem::path& file) {
    return isStream(file) ? "standard input" : file.string();
}

GltfContainer readContainer(const std::filesystem::path& file) {
    const bool stream = isStream(file);
    std::string bytes;
    try {
        bytes = stream ? readStandardInput(kMostBytes) : readWholeFile(file, kMostBytes);
    } catch (const std::system_error& error) {
        throw Error(Fault::Scene, fmt::format("{}: cannot be read: {}; {}", shownName(file),
                                              error.code().message(),
                                              stream ? "pipe a scene into it" : "check the path"));
    }
    if (stream && bytes.empty()) {
        throw Error(Fault::Scene, "standard input: is empty; pipe a .glb or .gltf into it");
    }
    if (bytes.starts_with(kMagic)) return split(file, bytes);
    return {false, std::move(bytes), {}};
}

std::string containerBytes(const GltfContainer& container) {
    if (!container.binary) return container.json;
    const std::size_t jsonSize = (container.json.size() + 3) / 4 * 4;
    const std::size_t length = kHeaderSize + kChunkHeaderSize + jsonSize + container.chunks.size();
    if (length > kMostBytes) throw Error(Fault::Scene, "would pass the 4 GiB that a .glb may have");
    std::string bytes;
    bytes.reserve(length);
    bytes += kMagic;
    bytes += wordBytes(2) + wordBytes(length) + wordBytes(jsonSize);
    bytes += kJsonType;
    bytes += container.json;
    bytes.append(jsonSize - container.json.size(), ' ');
    bytes += container.chunks;
    return bytes;
}

}  // namespace tavora::studio
