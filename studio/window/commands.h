#pragma once

#include "studio/app/requests.h"
#include "studio/setup/report.h"

namespace tavora::studio {

/// Opens the edit window and returns when it is closed. Throws Error: Fault::Usage, Fault::Scene or
/// Fault::Module; a missing display ends the process. To be called once, on the main thread.
void edit(const EditRequest& request, Report& report);

/// Draws the shader's panel to a picture; needs no display. Throws Error, with any Fault. To be
/// called once, on the main thread.
void drawPanel(const PanelRequest& request, Report& report);

}  // namespace tavora::studio
