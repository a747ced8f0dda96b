#pragma once

#include "studio/app/requests.h"
#include "studio/setup/report.h"

namespace tavora::studio {

/// Opens the edit window and returns when it is closed. Throws Error, Fault::Usage when
/// there is no display, Fault::Scene, Fault::Module. Once a process, main thread.
void edit(const EditRequest& request, Report& report);

/// Draws the shader's panel to a picture; needs no display. Throws Error, Fault::Usage,
/// Fault::Scene, Fault::Module, Fault::Output. Once a process, main thread.
void drawPanel(const PanelRequest& request, Report& report);

}  // namespace tavora::studio
