#pragma once

#include <filesystem>
#include <string>

namespace tavora::studio {

/// A glTF file split into its JSON and the rest.
struct GltfContainer {
    bool binary = false;  ///< .glb
    std::string json;     ///< text of the document, without padding
    std::string chunks;   ///< .glb: the bytes after the JSON chunk, unchanged
};

/// The file's name in messages.
std::string shownName(const std::filesystem::path& file);

/// Reads a file, or standard input for "-". Throws Error, Fault::Scene, when the file cannot
/// be read or is a .glb that is damaged or not of version 2. The JSON is not parsed.
GltfContainer readContainer(const std::filesystem::path& file);

/// The bytes of the file; throws Error, Fault::Scene, when a .glb would exceed 4 GiB.
std::string containerBytes(const GltfContainer& container);

}  // namespace tavora::studio
