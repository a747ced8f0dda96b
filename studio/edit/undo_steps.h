#pragma once

#include <string>
#include <vector>

#include "studio/edit/undo_stack.h"

namespace tavora::studio {

struct Look;

/// Functions that make the steps of a user's edits, to push on the undo stack. They change
/// nothing themselves. GUI thread.

/// What a panel changed in the surface's record. A surface that had no shader gets an enabled
/// one.
[[nodiscard]] UndoStep recordStep(SceneSettings& settings, std::size_t surface, Gesture gesture);

/// Enables or disables the shader of a surface. A surface that never had one gets a new shader.
[[nodiscard]] UndoStep enableStep(const SceneSettings& settings, std::size_t surface, bool enabled);

/// Changes shaders; `what` names the step in menus. Throws Error, Fault::Scene, for a damaged
/// block.
[[nodiscard]] UndoStep settingsStep(SceneSettings& settings, const ShaderChanges& changes,
                                    std::string what);

/// Applies a look, a name or file, to surfaces, and enables their shaders. Throws Error.
[[nodiscard]] UndoStep lookStep(SceneSettings& settings, const std::string& look,
                                const std::vector<std::size_t>& surfaces);

/// The shaders that a look gives the surfaces. As on the command line it is applied to the
/// built-in settings, not to the current ones or the user's defaults.
ShaderChanges withLook(const SceneSettings& settings, const Look& look,
                       const std::vector<std::size_t>& surfaces);

}  // namespace tavora::studio
