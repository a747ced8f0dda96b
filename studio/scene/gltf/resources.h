#pragma once

#include <filesystem>
#include <string_view>

#include "studio/scene/gltf/source.h"

namespace tavora::studio {

/// Fills `source.buffers` from files beside the scene, data URIs, or `binary`,
/// the binary chunk of a .glb. Throws Error that names the buffer.
void readBuffers(GltfSource& source, const std::filesystem::path& folder, std::string_view binary);

/// Fills `source.images`; the buffers must be there. Throws Error for URIs
/// that lead out of the folder; a missing file only leaves a `problem`.
void readImageFiles(GltfSource& source, const std::filesystem::path& folder);

}  // namespace tavora::studio
