#pragma once

#include "studio/scene/gltf_source.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// Places the nodes of the file's scene at rest: fills objects, lights, cameras
/// and bounds of `scene`, whose surfaces are there already. Throws SceneError.
void poseAtRest(const GltfSource& source, Scene& scene);

}  // namespace tavora::studio
