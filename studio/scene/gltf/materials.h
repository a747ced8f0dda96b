#pragma once

#include "studio/scene/gltf/source.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// Fills `scene.surfaces` (the file's materials in order, then the default one)
/// and `scene.images` with what the surfaces use. Throws Error.
void readMaterials(const GltfSource& source, Scene& scene);

/// Brings the numbers of `scene.surfaces`, which readMaterials() filled, to what the
/// document says now: factors, strengths, the places of textures.
void refreshMaterials(const GltfSource& source, Scene& scene);

}  // namespace tavora::studio
