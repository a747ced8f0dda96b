#pragma once

#include "studio/scene/gltf/source.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// Reports the features of a file that are not drawn: one line for each, with the materials
/// that use it. Features without which parts of the scene are missing go to the scene's
/// warnings, others to its notes. `scene` must have the file's surfaces.
void reportUnsupported(const GltfSource& source, Scene& scene);

}  // namespace tavora::studio
