#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <tiny_gltf.h>
#include <vector>

#include <nlohmann/json.hpp>

namespace tavora::studio {

/// A glTF file as read: the parsed document, its buffers, and the bytes of its
/// image files, nothing posed or decoded yet.
struct GltfSource {
    std::string path;                 ///< for messages
    nlohmann::ordered_json document;  ///< for extras and extensions
    tinygltf::Model model;
    std::vector<std::vector<std::uint8_t>> imageFiles;  ///< per image; empty when not found

    /// Throws SceneError "PATH: WHAT".
    [[noreturn]] void fail(const std::string& what) const;
};

/// Throws SceneError when the file, or a buffer of it, cannot be read, when a
/// URI leads out of the file's folder, or a required extension is not supported.
GltfSource readGltfSource(const std::filesystem::path& file);

}  // namespace tavora::studio
