#include "studio/scene/gltf/resources.h"

#include <fmt/format.h>
#include <system_error>

#include "studio/files/whole_file.h"
#include "studio/scene/gltf/accessor.h"
#include "studio/scene/gltf/uri.h"
#include "studio/util/text.h"

namespace tavora::studio {
namespace {

using Bytes = std::vector<std::uint8_t>;
namespace fs = std::filesystem;

constexpr std::size_t kLargestFile = std::size_t{1} << 32;

std::string shown(std::string_view uri) {
    return isDataUri(uri) ? "its data URI" : "\"" + shortened(uri) + "\"";
}

Bytes asBytes(std::string_view text) {
    return {text.begin(), text.end()};
}

/// What a URI of `place` stands for. Files that are not there throw system_error.
Bytes bytesOf(const GltfSource& source, const fs::path& folder, std::string_view uri,
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

Bytes readBuffer(const GltfSource& source, const gltf::Buffer& entry, const fs::path& folder,
                 std::string_view binary, const std::string& place) {
    if (entry.uri.empty()) return asBytes(binary);
    try {
        return bytesOf(source, folder, entry.uri, place);
    } catch (const std::system_error& error) {
        source.fail(fmt::format("{} cannot be had from the file {} ({}): put it beside the scene",
                                place, shown(entry.uri), error.code().message()));
    }
}

/// The image in a buffer view.
Bytes viewOf(const GltfSource& source, int index) {
    const ByteRange view = viewBytes(source, index);
    return {view.data, view.data + view.size};
}

SourceImage readImage(const GltfSource& source, const gltf::Image& entry, const fs::path& folder,
                      const std::string& place) {
    SourceImage image;
    image.name = entry.uri.empty() || isDataUri(entry.uri) ? entry.name : entry.uri;
    if (image.name.empty()) image.name = place;
    try {
        if (!entry.uri.empty()) {
            image.bytes = bytesOf(source, folder, entry.uri, place);
        } else if (entry.bufferView != gltf::kNone) {
            image.bytes = viewOf(source, entry.bufferView);
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
    for (const gltf::Buffer& entry : source.document.buffers) {
        const std::string place = fmt::format("buffers[{}]", index);
        const std::string_view chunk = index == 0 ? binary : std::string_view();
        Bytes bytes = readBuffer(source, entry, folder, chunk, place);
        if (bytes.size() < entry.byteLength) {
            source.fail(fmt::format("{} declares {} bytes but has {}: export the file again", place,
                                    entry.byteLength, bytes.size()));
        }
        bytes.resize(entry.byteLength);
        source.buffers.push_back(std::move(bytes));
        ++index;
    }
}

void readImageFiles(GltfSource& source, const fs::path& folder) {
    std::size_t index = 0;
    for (const gltf::Image& entry : source.document.images) {
        const std::string place = fmt::format("images[{}]", index++);
        source.images.push_back(readImage(source, entry, folder, place));
    }
}

}  // namespace tavora::studio
