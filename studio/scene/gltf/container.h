#pragma once

#include <filesystem>
#include <string>

namespace tavora::studio {

/// A glTF file taken apart no further than needed to change its JSON.
struct GltfContainer {
    bool binary = false;  ///< .glb
    std::string json;     ///< the document as it stands, padding cut
    std::string chunks;   ///< .glb: all that follows the JSON chunk, byte for byte
};

/// What messages call the file.
std::string shownName(const std::filesystem::path& file);

/// Reads a file, or standard input for "-". Throws Error: missing file,
/// neither JSON nor a whole .glb of version 2.
GltfContainer readContainer(const std::filesystem::path& file);

/// The bytes of the file; throws Fault::Scene when a .glb would pass 4 GiB.
std::string containerBytes(const GltfContainer& container);

}  // namespace tavora::studio
