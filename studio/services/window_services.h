#pragma once

#include "host/services/color_picker.h"
#include "host/services/panels.h"
#include "host/services/raster.h"

namespace tavora::studio {

/// The services that only a program with a window can offer; null for one that it lacks.
struct WindowServices {
    const HostPanelServices* panels = nullptr;
    const HostRasterServices* raster = nullptr;
    HostColorPicker* colorPicker = nullptr;
};

/// Offers these services to modules, in place of those offered before. The tables must stay
/// valid until others are offered. Interface thread.
void offerWindowServices(const WindowServices& services);

}  // namespace tavora::studio
