#pragma once

#include <QPointer>
#include <vector>

#include "studio/panels/handles.h"
#include "studio/panels/panel_dialog.h"
#include "studio/panels/panel_frame.h"
#include "studio/services/window_services.h"

namespace tavora::studio {

/// What the services' functions work on. GUI thread.
struct PanelWorld {
    PanelHooks hooks;
    QPointer<QWidget> window;
    Handles<PanelDialog, HostPanelId> panels;
    Handles<PanelControl, HostControlId> controls;
    std::vector<QPointer<PanelDialog>> open;  ///< the innermost last
    QDialog* picker = nullptr;                ///< while a colour is picked
    QPointer<PanelFrame> kept;                ///< for the next panel; see Panels::keepWindow
    bool keepWindow = false;

    /// What a new dialog stands over; may be null.
    QWidget* top() const;
    /// What the innermost panel stands over; may be null.
    QWidget* under() const;
};

/// The tables to offer. They answer for the world that is set, and do nothing
/// while there is none.
WindowServices panelServices();
void setPanelWorld(PanelWorld* world);

}  // namespace tavora::studio
