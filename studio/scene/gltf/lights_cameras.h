#pragma once

#include <ImathMatrix.h>
#include <string>
#include <vector>

#include "studio/scene/gltf/source.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// The light of node `node`, whose transform is `toWorld`. Its name is as stored and may be
/// empty. Invalid values in extras are ignored, with a line in `warnings`.
Light readLight(const GltfSource& source, int node, const Imath::M44d& toWorld,
                std::vector<std::string>& warnings);

/// Camera `index` of the file, on a node whose transform is `toWorld`. Its name is as stored
/// and may be empty. Throws Error when it has no usable field of view.
Camera readCamera(const GltfSource& source, int index, const Imath::M44d& toWorld);

}  // namespace tavora::studio
