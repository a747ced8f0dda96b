#pragma once

#include <filesystem>
#include <string_view>

#include "studio/scene/gltf/source.h"

namespace tavora::studio {

/// The folder of the files that a scene refers to.
struct ResourceFolder {
    std::filesystem::path path;
    bool outside = false;  ///< as in ReadOptions
};

/// Fills the source's buffers and images from files, each of which is read once, from data
/// URIs, or from `binary`, the binary chunk of a .glb, which the source owns. Throws Error for
/// a buffer that cannot be read and for a URI that leads out of the folder; an image that
/// cannot be read only gets a `problem`.
void readResources(GltfSource& source, const ResourceFolder& folder, std::string_view binary);

}  // namespace tavora::studio
