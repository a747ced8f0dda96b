#pragma once

#include <string_view>

#include "studio/panels/control.h"

namespace tavora::studio {

struct ControlClass {
    std::string_view name;  ///< that modules use
    const char* shortName;  ///< in names of widgets
    PanelControl* (*make)(const ControlSeed& seed);
};

/// Null for a class that there is none of.
const ControlClass* findControlClass(std::string_view name);

}  // namespace tavora::studio
