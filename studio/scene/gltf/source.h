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
    std::string name;                     ///< for messages: its file, its name or its number
    std::span<const std::uint8_t> bytes;  ///< the same as others' of that file; empty when
                                          ///< `problem` is not
    std::string problem;                  ///< why it cannot be had, and what to do
};

/// A glTF file as read: the document, its buffers, and the bytes of its image
/// files, nothing posed or decoded yet. Moved, not copied: the document points
/// into the JSON.
struct GltfSource {
    std::string path;     ///< for messages
    bool stream = false;  ///< from standard input: no folder, so no files beside it
    gltf::Json json;
    gltf::Document document;
    std::deque<std::string> held;  ///< bytes of files, each read once, and of data URIs
    std::vector<std::span<const std::uint8_t>> buffers;  ///< each as long as it declares
    std::vector<SourceImage> images;
    std::shared_ptr<MemoryBudget> memory;  ///< of the scene
    MemoryShare share;                     ///< of it, for what is in here

    std::size_t bytesHeld = 0;  ///< sum over `held`
    std::string digest;         ///< of the document's text and all that is held: XXH3, 128
                                ///< bits, hexadecimal

    /// Keeps bytes with the source; valid as long as it.
    std::span<const std::uint8_t> hold(std::string bytes);

    GltfSource() = default;
    GltfSource(GltfSource&&) = default;

    /// Throws Error "PATH: WHAT".
    [[noreturn]] void fail(const std::string& what) const;
};

/// Throws Error when the file, or a buffer of it, cannot be read, when a
/// URI leads out of the file's folder, or a required extension is not supported.
/// An image that cannot be had is no error before something uses it. Any thread.
GltfSource readGltfSource(const std::filesystem::path& file, const ReadOptions& options = {});

}  // namespace tavora::studio
