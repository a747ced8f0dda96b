#pragma once

#include "studio/scene/gltf/source.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// Fills `scene.surfaces` with the file's materials, in order, and the default material after
/// them, and `scene.images` with the images that they use. Throws Error.
void readMaterials(const GltfSource& source, Scene& scene);

/// Updates the numbers of `scene.surfaces`, which readMaterials() filled, from the document:
/// factors, strengths and texture transforms.
void refreshMaterials(const GltfSource& source, Scene& scene);

}  // namespace tavora::studio
