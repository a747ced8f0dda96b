#pragma once

#include "studio/scene/gltf/source.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// Fills `scene.surfaces` (the file's materials in order, then the default one)
/// and `scene.images` with what the surfaces use. Throws Error.
void readMaterials(const GltfSource& source, Scene& scene);

}  // namespace tavora::studio
