#include "studio/scene/gltf/resources.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <system_error>

#include "studio/files/whole_file.h"
#include "studio/scene/gltf/accessor.h"
#include "studio/scene/gltf/uri.h"
#include "studio/util/text.h"

namespace tavora::studio {
namespace {

using Bytes = std::span<const std::uint8_t>;
namespace fs = std::filesystem;

constexpr std::size_t kLargestFile = std::size_t{1} << 32;

std::string shown(std::string_view uri) {
    return isDataUri(uri) ? "its data URI" : "\"" + shortened(uri) + "\"";
}

Bytes asBytes(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

/// Whether a file in `folder` is one of somewhere else, by way of symbolic links.
bool isElsewhere(const fs::path& folder, const fs::path& file) {
    const fs::path home = fs::canonical(folder.empty() ? "." : folder);
    const fs::path real = fs::canonical(folder / file);
    return std::mismatch(home.begin(), home.end(), real.begin(), real.end()).first != home.end();
}

/// Reads what a file names.
class Resources {
  public:
    Resources(GltfSource& source, const ResourceFolder& folder, std::string_view binary)
        : source_(source), folder_(folder), binary_(binary) {}

    Bytes buffer(const gltf::Buffer& entry, const std::string& place, bool first) {
        const Bytes bytes = entry.uri.empty() ? asBytes(first ? binary_ : std::string_view())
                                              : bufferFile(entry.uri, place);
        if (bytes.size() < entry.byteLength) {
            source_.fail(fmt::format("{} declares {} bytes but has {}: export the file again",
                                     place, entry.byteLength, bytes.size()));
        }
        return bytes.first(entry.byteLength);
    }

    SourceImage image(const gltf::Image& entry, const std::string& place) {
        SourceImage image;
        image.name = entry.uri.empty() || isDataUri(entry.uri) ? entry.name : entry.uri;
        if (image.name.empty()) image.name = place;
        try {
            if (!entry.uri.empty()) {
                image.bytes = bytesOf(entry.uri, place);
            } else if (entry.bufferView != gltf::kNone) {
                const ByteRange view = viewBytes(source_, entry.bufferView);
                image.bytes = {view.data, view.size};
            }
            if (image.bytes.empty()) image.problem = "is empty: export it again";
        } catch (const std::system_error& error) {
            image.problem =
                fmt::format("cannot be read ({}): put it beside the scene", error.code().message());
        }
        return image;
    }

  private:
    Bytes bufferFile(std::string_view uri, const std::string& place) {
        try {
            return bytesOf(uri, place);
        } catch (const std::system_error& error) {
            source_.fail(
                fmt::format("{} cannot be had from the file {} ({}): put it beside the scene",
                            place, shown(uri), error.code().message()));
        }
    }

    /// What a URI of `place` stands for. Files that are not there throw system_error.
    Bytes bytesOf(std::string_view uri, const std::string& place) {
        if (isDataUri(uri)) {
            source_.share.take(2 * uri.size(), "the data URI of " + place);
            auto data = dataOfUri(uri);
            if (!data) source_.fail(place + " has a damaged data URI: export the file again");
            return source_.hold({data->begin(), data->end()});
        }
        if (source_.stream) {
            source_.fail(
                fmt::format("{} names the file {}, but a scene from standard input has no folder: "
                            "name the scene's file, or pipe a .glb that holds everything",
                            place, shown(uri)));
        }
        const auto file = fileOfUri(uri);
        if (!file || (!folder_.outside && leadsOut(*file))) {
            source_.fail(fmt::format(
                "{} names the file {}: only files in the scene's own folder are read, copy it "
                "there{}",
                place, shown(uri), file ? ", or let it be read with --allow-outside" : ""));
        }
        const fs::path path = (folder_.path / *file).lexically_normal();
        const auto known = files_.find(path);
        if (known != files_.end()) return known->second;
        source_.share.take(fs::file_size(path), "the file " + shown(uri));
        return files_[path] = source_.hold(readWholeFile(path, kLargestFile));
    }

    bool leadsOut(const fs::path& file) const {
        return std::find(file.begin(), file.end(), "..") != file.end() ||
               isElsewhere(folder_.path, file);
    }

    GltfSource& source_;
    const ResourceFolder& folder_;
    std::string_view binary_;
    std::map<fs::path, Bytes> files_;
};

}  // namespace

void readResources(GltfSource& source, const ResourceFolder& folder, std::string_view binary) {
    Resources resources(source, folder, binary);
    for (std::size_t i = 0; i < source.document.buffers.size(); ++i) {
        source.buffers.push_back(
            resources.buffer(source.document.buffers[i], fmt::format("buffers[{}]", i), i == 0));
    }
    for (std::size_t i = 0; i < source.document.images.size(); ++i) {
        source.images.push_back(
            resources.image(source.document.images[i], fmt::format("images[{}]", i)));
    }
}

}  // namespace tavora::studio
