#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "studio/scene/gltf/document.h"

namespace tavora::studio {

/// A picture file of a scene, not decoded.
struct SourceImage {
    std::string name;                 ///< for messages: its file, its name or its number
    std::vector<std::uint8_t> bytes;  ///< empty when `problem` is not
    std::string problem;              ///< why it cannot be had, and what to do
};

/// A glTF file as read: the document, its buffers, and the bytes of its image
/// files, nothing posed or decoded yet. Moved, not copied: the document points
/// into the JSON.
struct GltfSource {
    std::string path;     ///< for messages
    bool stream = false;  ///< from standard input: no folder, so no files beside it
    gltf::Json json;
    gltf::Document document;
    std::vector<std::vector<std::uint8_t>> buffers;  ///< each as long as it declares
    std::vector<SourceImage> images;

    GltfSource() = default;
    GltfSource(GltfSource&&) = default;

    /// Throws Error "PATH: WHAT".
    [[noreturn]] void fail(const std::string& what) const;
};

/// Throws Error when the file, or a buffer of it, cannot be read, when a
/// URI leads out of the file's folder, or a required extension is not supported.
/// An image that cannot be had is no error before something uses it. Any thread.
GltfSource readGltfSource(const std::filesystem::path& file);

}  // namespace tavora::studio
