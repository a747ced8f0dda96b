#pragma once

#include <string>
#include <vector>

#include "studio/edit/undo_stack.h"

namespace tavora::studio {

struct Look;

/// What a user does to the settings of a scene, as steps to push on its undo
/// stack. GUI thread.

/// What a panel wrote into the surface's record. Turns a surface on that had no shader.
[[nodiscard]] Step recordStep(SceneSettings& settings, std::size_t surface, Gesture gesture);

/// A surface that never had the shader gets a new one's settings.
[[nodiscard]] Step enableStep(const SceneSettings& settings, std::size_t surface, bool enabled);

/// Named `what` in menus. Throws Fault::Scene for a damaged block.
[[nodiscard]] Step settingsStep(SceneSettings& settings, const ShaderChanges& changes,
                                std::string what);

/// Puts a look (a name or file) on the surfaces and turns them on. Throws Error.
[[nodiscard]] Step lookStep(SceneSettings& settings, const std::string& look,
                            const std::vector<std::size_t>& surfaces);

/// What a look gives the surfaces. As on the command line it lies over the built-in
/// settings, whatever is on the surfaces and the user stored.
ShaderChanges withLook(const SceneSettings& settings, const Look& look,
                       const std::vector<std::size_t>& surfaces);

}  // namespace tavora::studio
