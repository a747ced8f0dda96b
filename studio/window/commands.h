#pragma once

#include "studio/app/report.h"
#include "studio/app/requests.h"

namespace tavora::studio {

/// Opens the edit window and returns when it is closed. Throws UsageError when
/// there is no display, SceneError, LinkError. Once a process, main thread.
void edit(const EditRequest& request, Report& report);

/// Draws the shader's panel to a picture; needs no display. Throws UsageError,
/// SceneError, LinkError, OutputError. Once a process, main thread.
void drawPanel(const PanelRequest& request, Report& report);

}  // namespace tavora::studio
