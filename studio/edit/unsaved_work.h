#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "studio/scene/surface_shader.h"

namespace tavora::studio {

/// Unsaved work on a scene: the contents of a recovery file.
struct UnsavedWork {
    std::filesystem::path scene;  ///< absolute
    std::uintmax_t sceneSize = 0;
    std::uint64_t sceneHash = 0;  ///< of the scene file that was edited
    std::vector<std::pair<std::string, std::optional<SurfaceShader>>> surfaces;  ///< by name

    bool operator==(const UnsavedWork&) const = default;
};

/// The text of a recovery file, which readUnsavedWork() reads back exactly. It also has the
/// current time, for people.
std::string textOfUnsavedWork(const UnsavedWork& work);

/// Reads a recovery file; all blocks in the result are complete. Throws Error, Fault::Scene,
/// for a damaged file; the message starts with `where`.
UnsavedWork readUnsavedWork(std::string_view text, const std::string& where);

}  // namespace tavora::studio
