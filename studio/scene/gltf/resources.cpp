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

std::string quoted(std::string_view uri) {
    return isDataUri(uri) ? "its data URI" : "\"" + shortened(uri) + "\"";
}

Bytes asBytes(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

/// Whether symbolic links lead from a file in `folder` to a file elsewhere.
bool isElsewhere(const fs::path& folder, const fs::path& file) {
    const fs::path home = fs::canonical(folder.empty() ? "." : folder);
    const fs::path real = fs::canonical(folder / file);
    return std::mismatch(home.begin(), home.end(), real.begin(), real.end()).first != home.end();
}

/// Reads the buffers and images that a file refers to. `where` is their name in messages.
class Resources {
  public:
    Resources(GltfSource& source, const ResourceFolder& folder, std::string_view binary)
        : source_(source), folder_(folder), binary_(binary) {}

    Bytes buffer(const gltf::Buffer& entry, const std::string& where, bool first) {
        const Bytes bytes = entry.uri.empty() ? asBytes(first ? binary_ : std::string_view())
                                              : bufferFile(entry.uri, where);
        if (bytes.size() < entry.byteLength) {
            source_.fail(fmt::format("{} declares {} bytes but has {}: export the file again",
                                     where, entry.byteLength, bytes.size()));
        }
        return bytes.first(entry.byteLength);
    }

    SourceImage image(const gltf::Image& entry, const std::string& where) {
        SourceImage image;
        image.name = entry.uri.empty() || isDataUri(entry.uri) ? entry.name : entry.uri;
        if (image.name.empty()) image.name = where;
        try {
            if (!entry.uri.empty()) {
                image.bytes = bytesOf(entry.uri, where);
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
    Bytes bufferFile(std::string_view uri, const std::string& where) {
        try {
            return bytesOf(uri, where);
        } catch (const std::system_error& error) {
            source_.fail(
                fmt::format("{} cannot be had from the file {} ({}): put it beside the scene",
                            where, quoted(uri), error.code().message()));
        }
    }

    /// The bytes that a URI refers to. Throws std::system_error for a file that cannot be
    /// read, else Error.
    Bytes bytesOf(std::string_view uri, const std::string& where) {
        if (isDataUri(uri)) {
            source_.memoryShare.take(2 * uri.size(), "the data URI of " + where);
            auto data = dataOfUri(uri);
            if (!data) source_.fail(where + " has a damaged data URI: export the file again");
            return source_.hold({data->begin(), data->end()});
        }
        if (source_.stream) {
            source_.fail(
                fmt::format("{} names the file {}, but a scene from standard input has no folder: "
                            "name the scene's file, or pipe a .glb that holds everything",
                            where, quoted(uri)));
        }
        const auto file = fileOfUri(uri);
        if (!file || (!folder_.outside && isOutside(*file))) {
            source_.fail(fmt::format(
                "{} names the file {}: only files in the scene's own folder are read, copy it "
                "there{}",
                where, quoted(uri), file ? ", or let it be read with --allow-outside" : ""));
        }
        const fs::path path = (folder_.path / *file).lexically_normal();
        const auto found = files_.find(path);
        if (found != files_.end()) return found->second;
        source_.memoryShare.take(fs::file_size(path), "the file " + quoted(uri));
        return files_[path] = source_.hold(readWholeFile(path, kLargestFile));
    }

    bool isOutside(const fs::path& file) const {
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
