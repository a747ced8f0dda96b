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

/// Unsaved work on a scene, as it lies in a recovery file.
struct UnsavedWork {
    std::filesystem::path scene;  ///< absolute
    std::uintmax_t sceneSize = 0;
    std::uint64_t sceneHash = 0;  ///< of the file that it belongs to
    std::vector<std::pair<std::string, std::optional<SurfaceShader>>> surfaces;  ///< by name

    bool operator==(const UnsavedWork&) const = default;
};

/// A text that readUnsavedWork() reads back to the bit; it also tells the time, for people.
std::string textOfUnsavedWork(const UnsavedWork& work);

/// Throws Error for what is damaged; `where` opens the message. Blocks are
/// complete ones.
UnsavedWork readUnsavedWork(std::string_view text, const std::string& where);

}  // namespace tavora::studio
