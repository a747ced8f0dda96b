#pragma once

#include <ImathMatrix.h>
#include <string>
#include <vector>

#include "studio/scene/gltf/source.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// The light on node `node`, placed by `toWorld`. Its name is as stored and may be
/// empty. What its extras say wrongly is left out with a warning.
Light readLight(const GltfSource& source, int node, const Imath::M44d& toWorld,
                std::vector<std::string>& warnings);

/// Camera `index` of the file, placed by `toWorld`. Its name is as stored and
/// may be empty. Throws Error.
Camera readCamera(const GltfSource& source, int index, const Imath::M44d& toWorld);

}  // namespace tavora::studio
