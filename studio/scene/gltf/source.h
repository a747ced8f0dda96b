#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <tiny_gltf.h>
#include <vector>

#include <nlohmann/json.hpp>

namespace tavora::studio {

/// A picture file of a scene, not decoded.
struct SourceImage {
    std::string name;                 ///< for messages: its file, its name or its number
    std::vector<std::uint8_t> bytes;  ///< empty when `problem` is not
    std::string problem;              ///< why it cannot be had, and what to do
};

/// A glTF file as read: the document, its buffers, and the bytes of its image
/// files, nothing posed or decoded yet. checkShape() passed the document.
struct GltfSource {
    std::string path;                 ///< for messages
    bool stream = false;              ///< from standard input: no folder, so no files beside it
    nlohmann::ordered_json document;  ///< all of it; for materials, extras and extensions
    tinygltf::Model model;            ///< the rest, without buffers, images and materials
    std::vector<std::vector<std::uint8_t>> buffers;  ///< each as long as it declares
    std::vector<SourceImage> images;

    /// Throws Error "PATH: WHAT", brought to one line.
    [[noreturn]] void fail(const std::string& what) const;
};

/// Throws Error when the file, or a buffer of it, cannot be read, when a
/// URI leads out of the file's folder, or a required extension is not supported.
/// An image that cannot be had is no error before something uses it. Any thread.
GltfSource readGltfSource(const std::filesystem::path& file);

}  // namespace tavora::studio
