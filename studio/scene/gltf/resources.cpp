#include "studio/scene/gltf/resources.h"

#include <fmt/format.h>
#include <system_error>

#include "studio/files/whole_file.h"
#include "studio/scene/gltf/accessor.h"
#include "studio/scene/gltf/uri.h"

namespace tavora::studio {
namespace {

using Json = nlohmann::ordered_json;
using Bytes = std::vector<std::uint8_t>;
namespace fs = std::filesystem;

constexpr std::size_t kLargestFile = std::size_t{1} << 32;
constexpr std::size_t kLongestUriShown = 80;

const Json& listOf(const Json& document, const char* name) {
    static const Json none = Json::array();
    const auto found = document.find(name);
    return found == document.end() || !found->is_array() ? none : *found;
}

std::string textOf(const Json& entry, const char* name) {
    const auto found = entry.find(name);
    return found != entry.end() && found->is_string() ? found->get<std::string>() : "";
}

std::string shown(const std::string& uri) {
    return isDataUri(uri) ? "its data URI" : "\"" + uri.substr(0, kLongestUriShown) + "\"";
}

Bytes asBytes(std::string_view text) {
    return {text.begin(), text.end()};
}

/// What a URI of `place` stands for. Files that are not there throw system_error.
Bytes bytesOf(const GltfSource& source, const fs::path& folder, const std::string& uri,
              const std::string& place) {
    if (isDataUri(uri)) {
        auto data = dataOfUri(uri);
        if (!data) source.fail(place + " has a damaged data URI: export the file again");
        return std::move(*data);
    }
    if (source.stream) {
        source.fail(
            fmt::format("{} names the file {}, but a scene from standard input has no folder: "
                        "name the scene's file, or pipe a .glb that holds everything",
                        place, shown(uri)));
    }
    const auto file = fileOfUri(uri);
    if (!file) {
        source.fail(
            fmt::format("{} names the file {}: only files in the scene's own folder are "
                        "read, copy it there",
                        place, shown(uri)));
    }
    return asBytes(readWholeFile(folder / *file, kLargestFile));
}

Bytes readBuffer(const GltfSource& source, const Json& entry, const fs::path& folder,
                 std::string_view binary, const std::string& place) {
    const std::string uri = textOf(entry, "uri");
    if (uri.empty()) return asBytes(binary);
    try {
        return bytesOf(source, folder, uri, place);
    } catch (const std::system_error& error) {
        source.fail(fmt::format("{} cannot be had from the file {} ({}): put it beside the scene",
                                place, shown(uri), error.code().message()));
    }
}

/// The image in a buffer view.
Bytes viewOf(const GltfSource& source, const Json& entry) {
    const Json& at = entry["bufferView"];
    const ByteRange view = viewBytes(source, at.get<int>());
    return {view.data, view.data + view.size};
}

SourceImage readImage(const GltfSource& source, const Json& entry, const fs::path& folder,
                      const std::string& place) {
    SourceImage image;
    const std::string uri = textOf(entry, "uri");
    image.name = uri.empty() || isDataUri(uri) ? textOf(entry, "name") : uri;
    if (image.name.empty()) image.name = place;
    try {
        if (!uri.empty()) {
            image.bytes = bytesOf(source, folder, uri, place);
        } else if (entry.contains("bufferView") && !entry["bufferView"].is_null()) {
            image.bytes = viewOf(source, entry);
        }
        if (image.bytes.empty()) image.problem = "is empty: export it again";
    } catch (const std::system_error& error) {
        image.problem =
            fmt::format("cannot be read ({}): put it beside the scene", error.code().message());
    }
    return image;
}

}  // namespace

void readBuffers(GltfSource& source, const fs::path& folder, std::string_view binary) {
    std::size_t index = 0;
    for (const Json& entry : listOf(source.document, "buffers")) {
        const std::string place = fmt::format("buffers[{}]", index);
        const std::string_view chunk = index == 0 ? binary : std::string_view();
        const auto size = entry["byteLength"].get<std::uint64_t>();
        Bytes bytes = readBuffer(source, entry, folder, chunk, place);
        if (bytes.size() < size) {
            source.fail(fmt::format("{} declares {} bytes but has {}: export the file again", place,
                                    size, bytes.size()));
        }
        bytes.resize(static_cast<std::size_t>(size));
        source.buffers.push_back(std::move(bytes));
        ++index;
    }
}

void readImageFiles(GltfSource& source, const fs::path& folder) {
    std::size_t index = 0;
    for (const Json& entry : listOf(source.document, "images")) {
        const std::string place = fmt::format("images[{}]", index++);
        source.images.push_back(readImage(source, entry, folder, place));
    }
}

}  // namespace tavora::studio
