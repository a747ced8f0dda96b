#pragma once

#include <vector>

#include "studio/scene/gltf/source.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// What the animations of a file are, in its order. Throws Error for one that
/// cannot be played: key times that go backwards or are no numbers, and values
/// that are of another type, or more or fewer, than the keys and what they move
/// ask for.
std::vector<AnimationInfo> readAnimations(const GltfSource& source);

}  // namespace tavora::studio
