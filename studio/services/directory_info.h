#pragma once

#include <filesystem>
#include <optional>

namespace tavora::studio {

/// Overrides the folder of the user's settings; an empty path ends the override. To be called
/// before modules are activated. One thread.
void setSettingsFolder(const std::filesystem::path& folder);

/// The folder of the user's settings: the first that is set of the override, TAVORA_DEFAULTS,
/// $XDG_CONFIG_HOME/tavora and ~/.config/tavora. Empty when none is set. The folder need not
/// exist.
std::optional<std::filesystem::path> settingsFolder();

/// As long as an object of this class exists, modules on its thread are told that there is no
/// folder of the user's settings: new shaders start with the values that are built into the
/// module, and a panel that opens stores nothing. settingsFolder() does not change. May be
/// nested.
class HiddenSettingsFolder {
  public:
    HiddenSettingsFolder() { ++hidden; }
    ~HiddenSettingsFolder() { --hidden; }
    HiddenSettingsFolder(const HiddenSettingsFolder&) = delete;
    HiddenSettingsFolder& operator=(const HiddenSettingsFolder&) = delete;

    /// Whether such an object exists on this thread.
    static bool any() { return hidden > 0; }

  private:
    inline static thread_local int hidden = 0;
};

}  // namespace tavora::studio
