#pragma once

#include <string>
#include <vector>

namespace tavora::studio {

/// --look [SURFACE=]FILE
struct LookChoice {
    std::string surfaces;  ///< name or glob; empty: all
    std::string look;
};

/// --set SURFACE.field=value
struct SettingChange {
    std::string surfaces;  ///< name or glob
    std::string setting;   ///< "edgeCoverage", "zones[1].color"
    std::string value;     ///< as typed
};

/// What goes on which surface.
struct ShadingRequest {
    std::vector<LookChoice> looks;
    std::string defaultLook = {};  ///< for surfaces that nothing is said of; empty: they stay plain
    std::vector<SettingChange> changes;
    std::vector<std::string> plain;  ///< names or globs of surfaces without shader
    std::string plugin;              ///< where to look for the module; empty: the usual places
};

}  // namespace tavora::studio
