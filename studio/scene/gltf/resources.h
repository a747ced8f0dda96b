#pragma once

#include <filesystem>
#include <string_view>

#include "studio/scene/gltf/source.h"

namespace tavora::studio {

/// Where the files that a scene names are looked for.
struct ResourceFolder {
    std::filesystem::path path;
    bool outside = false;  ///< as in ReadOptions
};

/// Fills the source's buffers, then its images, from files beside the scene, each read
/// once, from data URIs, or from `binary`, the binary chunk of a .glb, which the source
/// holds. Throws Error that names the buffer, or a URI that leads out of the folder; a
/// missing image only leaves a `problem`.
void readResources(GltfSource& source, const ResourceFolder& folder, std::string_view binary);

}  // namespace tavora::studio
