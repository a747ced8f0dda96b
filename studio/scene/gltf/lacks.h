#pragma once

#include "studio/scene/gltf/source.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// Says what the file asks for and does not get: a line for each, once, with the
/// materials that ask for it. What will be missed goes to the scene's warnings, the
/// rest to its notes. `scene` has the file's surfaces.
void tellLacks(const GltfSource& source, Scene& scene);

}  // namespace tavora::studio
