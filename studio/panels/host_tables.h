#pragma once

#include <QPointer>
#include <vector>

#include "studio/panels/handles.h"
#include "studio/panels/panel_dialog.h"
#include "studio/panels/panel_frame.h"
#include "studio/services/window_services.h"

namespace tavora::studio {

/// The state of the services' functions. GUI thread.
struct PanelWorld {
    PanelHooks hooks;
    QPointer<QWidget> window;
    Handles<PanelDialog, HostPanelId> panels;
    Handles<PanelControl, HostControlId> controls;
    std::vector<QPointer<PanelDialog>> open;  ///< the innermost is the last
    QDialog* picker = nullptr;                ///< the open colour dialog
    QPointer<PanelFrame> reusableFrame;       ///< see Panels::keepWindow()
    bool keepWindow = false;

    /// The parent of a new dialog; may be null.
    QWidget* top() const;
    /// The parent of the innermost panel; may be null.
    QWidget* under() const;
};

/// The services' tables. Their functions use the world that is set, and do nothing when there is
/// none.
WindowServices panelServices();
void setPanelWorld(PanelWorld* world);

}  // namespace tavora::studio
