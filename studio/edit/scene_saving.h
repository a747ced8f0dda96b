#pragma once

#include <map>
#include <string>
#include <vector>

#include "studio/scene/scene.h"

namespace tavora::studio {

/// What goes into a scene file, and what cannot.
struct SavePlan {
    std::map<int, SurfaceShader> shaders;  ///< by material, for writeGltfSettings
    std::vector<std::size_t> kept;         ///< surfaces that the file holds as they are then
    std::vector<std::string> warnings;     ///< a line for each surface that has no place there
};

/// What must be stored in the file that `scene` was read from so that it holds
/// `shown` where it holds `saved` now. A file keeps no surface without shader
/// where it had one: that shader is turned off there. Surfaces that the file
/// has no material for are told in `warnings` where they differ from `opened`.
SavePlan planSave(const Scene& scene, const SurfaceShaders& shown, const SurfaceShaders& saved,
                  const SurfaceShaders& opened);

/// The same for a file that `now` was read from, another program having changed
/// it: materials go by name, and all settings are stored.
SavePlan planSaveOver(const Scene& scene, const Scene& now, const SurfaceShaders& shown);

}  // namespace tavora::studio
