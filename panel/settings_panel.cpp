#include "panel/settings_panel.h"

#include <memory>
#include <new>

#include "panel/control_table.h"
#include "panel/controls/controls.h"
#include "panel/tabs.h"
#include "persist/default_settings.h"
#include "plugin/record/instance_life.h"
#include "plugin/record/services.h"
#include "plugin/record/shader_instance.h"
#include "zones/editor/gradient_painter.h"

namespace tavora {
namespace {

constexpr int panelWidth = 450;
constexpr int panelHeight = 362;

struct DestroyRecord {
    void operator()(ShaderInstance* record) const { Destroy(record); }
};
using Snapshot = std::unique_ptr<ShaderInstance, DestroyRecord>;

template <class Service>
bool acquire(const char* name, Service*& service) {
    service = reinterpret_cast<Service*>(global(name, HOST_USE_TRANSIENT));
    return service != nullptr;
}

/// The services and an empty panel; null, or why there is none.
HostError beginPanel() {
    if (!acquire(HOST_PANELS_SERVICE, panelserv)) return "Could not access Panels global!";
    panelID = panelserv->create("Tavora v1.1", nullptr);
    if (panelID == nullptr) return "Could not create requester panel!";
    acquire(HOST_RASTER_SERVICE, rastfuncs);
    drawfuncs = panelserv->draw;
    if (acquire(HOST_COLOR_PICKER_SERVICE, colorpick)) return nullptr;
    panelserv->destroy(panelID);
    return "Could not access color picker!";
}

void placePanel() {
    int width = 0;
    int height = 0;
    drawfuncs->displaySize(&width, &height);
    panelserv->setPanel(panelID, HOST_PANEL_WIDTH, panelWidth);
    panelserv->setPanel(panelID, HOST_PANEL_HEIGHT, panelHeight);
    panelserv->setPanel(panelID, HOST_PANEL_X, (width - panelWidth) / 2);
    panelserv->setPanel(panelID, HOST_PANEL_Y, (height - panelHeight) / 2);
}

/// A copy to go back to, or null when memory does not suffice for one.
Snapshot snapshotOf(ShaderInstance* instance) {
    Snapshot snapshot(new (std::nothrow) ShaderInstance{});
    if (snapshot == nullptr || !copyRecord(*snapshot, *instance)) return nullptr;
    return snapshot;
}

void rollBack(ShaderInstance* instance, const Snapshot& snapshot) {
    if (snapshot != nullptr && copyRecord(*instance, *snapshot)) return;
    msg->error("Tavora: not enough memory to take the changes back",
               "The surface keeps them: load the scene again to have it as it was");
}

}  // namespace

HostError UI_callback(HostInstance handle) {
    auto* instance = static_cast<ShaderInstance*>(handle);
    ensureDefaultSettings(instance);
    if (HostError error = beginPanel()) return error;

    createControls(instance);
    placePanel();
    panelserv->setPanelDraw(panelID, redraw);
    panelserv->setPanelUserData(panelID, instance);
    tab1_event(nullptr, instance);

    const Snapshot snapshot = snapshotOf(instance);
    const int confirmed = panelserv->open(panelID, HOST_PANEL_BLOCKING | HOST_PANEL_CANCEL);
    if (confirmed == 0) rollBack(instance, snapshot);
    panelserv->destroy(panelID);
    return nullptr;
}

}  // namespace tavora
