#pragma once

#include <filesystem>

#include "studio/scene/read_options.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// Reads a glTF 2.0 file (.gltf or .glb; "-" for standard input, which must hold
/// everything) with all it refers to and poses it at rest. Cameras and lights are those of the
/// file; see default_view.h for what a file may lack. Throws Error for anything that cannot be
/// rendered as the file says. Any thread.
Scene readGltf(const std::filesystem::path& file, const ReadOptions& options = {});

}  // namespace tavora::studio
