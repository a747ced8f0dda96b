#pragma once

#include "host/services/color_picker.h"
#include "host/services/panels.h"
#include "host/services/raster.h"

namespace tavora::studio {

/// The services that only a program with a window can offer.
struct WindowServices {
    const HostPanelServices* panels = nullptr;
    const HostRasterServices* raster = nullptr;
    HostColorPicker* colorPicker = nullptr;
};

/// Offers them to modules; a null entry is a service the host has not. The
/// tables must stay valid until others are offered. Interface thread.
void offerWindowServices(const WindowServices& services);

}  // namespace tavora::studio
