#pragma once

#include <cstdint>
#include <deque>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "studio/scene/gltf/document.h"
#include "studio/scene/read_options.h"
#include "studio/util/memory_budget.h"

namespace tavora::studio {

/// A picture file of a scene, not decoded.
struct SourceImage {
    std::string name;  ///< for messages: its file, its name or its index
    /// Images of the same file share these bytes. Empty when there is a `problem`.
    std::span<const std::uint8_t> bytes;
    std::string problem;  ///< why it cannot be read, and what to do; else empty
};

/// A glTF file that was read: the document, its buffers, and the bytes of its image files,
/// before anything is posed or decoded. Can be moved but not copied, since the document
/// points into the JSON.
struct GltfSource {
    std::string path;     ///< for messages
    bool stream = false;  ///< read from standard input, so it cannot refer to other files
    gltf::Json json;
    gltf::Document document;
    std::deque<std::string> held;  ///< bytes of files, each read once, and of data URIs
    std::vector<std::span<const std::uint8_t>> buffers;  ///< each of its declared length
    std::vector<SourceImage> images;
    std::shared_ptr<MemoryBudget> memory;  ///< of the scene
    MemoryShare memoryShare;               ///< what this source has taken of it

    std::size_t totalBytes = 0;  ///< of all in `held`
    /// XXH3 hash of the document's text and of all in `held`: 128 bits, hexadecimal.
    std::string digest;

    /// Stores bytes in `held`. The result is valid as long as the source.
    std::span<const std::uint8_t> hold(std::string bytes);

    GltfSource() = default;
    GltfSource(GltfSource&&) = default;

    /// Throws Error "PATH: WHAT".
    [[noreturn]] void fail(const std::string& what) const;
};

/// Reads a file and the files that it refers to. Throws Error when the file or one of its
/// buffers cannot be read, when a URI leads out of the file's folder, or when a required
/// extension is not supported. An image that cannot be read is an error only when it is
/// used. Any thread.
GltfSource readGltfSource(const std::filesystem::path& file, const ReadOptions& options = {});

}  // namespace tavora::studio
