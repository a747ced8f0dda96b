#include "studio/panels/host_tables.h"

#include <QScreen>

#include "studio/panels/color_dialog.h"
#include "studio/panels/display.h"

namespace tavora::studio {
namespace {

PanelWorld* world = nullptr;

PanelDialog* panelOf(HostPanelId id) {
    return world != nullptr ? world->panels.find(id) : nullptr;
}

PanelControl* controlOf(HostControlId id) {
    return world != nullptr ? world->controls.find(id) : nullptr;
}

HostPanelId createPanel(const char* title, void* data) {
    if (world == nullptr) return nullptr;
    const HostPanelId id = world->panels.next();
    PanelDialog* owner = world->open.empty() ? nullptr : world->open.back().data();
    auto* panel = new PanelDialog(id, QString::fromUtf8(title), data, owner);
    world->panels.add(id, *panel);
    return id;
}

void destroyPanel(HostPanelId id) {
    PanelDialog* panel = panelOf(id);
    if (panel == nullptr) return;
    // Panels that were made over it are destroyed too.
    const auto all = world->panels.all();
    for (const auto& [other, over] : all)
        if (over->owner() == panel) destroyPanel(other);
    for (const PanelControl* control : panel->controls())
        world->controls.remove(control->id());
    world->panels.remove(id);
    panel->retire();
}

/// Shows a panel in the window that is reused for outermost panels, or in a new one.
bool showPanel(PanelDialog& panel, int mode) {
    const bool outermost = world->open.size() == 1;
    const QPointer<PanelFrame> frame = outermost && !world->reusableFrame.isNull()
                                           ? world->reusableFrame.data()
                                           : new PanelFrame(world->under());
    const bool confirmed = panel.run(mode, world->hooks, *frame);
    if (outermost && world != nullptr && world->keepWindow) {
        world->reusableFrame = frame;
    } else if (!frame.isNull()) {
        frame->hide();
        frame->deleteLater();
    }
    return confirmed;
}

int openPanel(HostPanelId id, int mode) {
    PanelDialog* panel = panelOf(id);
    if (panel == nullptr || panel->isOpen()) return 0;
    world->open.emplace_back(panel);
    bool confirmed = false;
    if (world->hooks.insteadOfShowing) {
        panel->runHidden(mode, world->hooks);
    } else {
        confirmed = showPanel(*panel, mode);
    }
    if (world != nullptr) world->open.pop_back();
    return confirmed ? 1 : 0;
}

HostControlId addControl(HostPanelId id, const char* controlClass,
                         const HostControlDescription* description, const char* label) {
    PanelDialog* panel = panelOf(id);
    const ControlClass* type = controlClass != nullptr ? findControlClass(controlClass) : nullptr;
    if (panel == nullptr || type == nullptr) return nullptr;
    const HostControlDescription none{};
    const HostControlId control = world->controls.next();
    world->controls.add(control,
                        panel->add(control, *type, description != nullptr ? *description : none,
                                   QString::fromUtf8(label)));
    return control;
}

void setControl(HostControlId id, HostControlAttribute attribute, const HostValue* value) {
    if (PanelControl* control = controlOf(id)) control->set(attribute, value);
}

void getControl(HostControlId id, HostControlAttribute attribute, HostValue* value) {
    if (const PanelControl* control = controlOf(id)) control->get(attribute, value);
}

void drawControl(HostControlId id, int mode) {
    if (PanelControl* control = controlOf(id)) control->draw(mode);
}

void setPanel(HostPanelId id, HostPanelAttribute attribute, int value) {
    if (PanelDialog* panel = panelOf(id)) panel->set(attribute, value);
}

void setPanelDraw(HostPanelId id, HostPanelDraw* draw) {
    if (PanelDialog* panel = panelOf(id)) panel->setDraw(draw);
}

void setPanelUserData(HostPanelId id, void* userData) {
    if (PanelDialog* panel = panelOf(id)) panel->setUserData(userData);
}

void drawPixel(HostPanelId id, int red, int green, int blue, int x, int y) {
    if (PanelDialog* panel = panelOf(id)) panel->canvas().setPixel(red, green, blue, x, y);
}

void drawBorder(HostPanelId id, int indent, int x, int y, int width, int height) {
    if (PanelDialog* panel = panelOf(id)) panel->canvas().addBorder(indent, x, y, width, height);
}

void drawText(HostPanelId id, const char* text, int colorIndex, int x, int y) {
    PanelDialog* panel = panelOf(id);
    if (panel != nullptr) panel->canvas().addText(QString::fromUtf8(text), colorIndex, x, y);
}

void displaySize(int* width, int* height) {
    const QWidget* window = world != nullptr ? world->window.data() : nullptr;
    const QScreen& screen = window != nullptr ? *window->screen() : panelScreen();
    if (width != nullptr) *width = screen.availableGeometry().width();
    if (height != nullptr) *height = screen.availableGeometry().height();
}

int runColorPicker(int version, HostColorPick* request) {
    if (world == nullptr || request == nullptr || version != HOST_COLOR_PICKER_VERSION) return 1;
    // No dialog may be shown, or one is already open.
    if (world->hooks.insteadOfShowing || world->picker != nullptr) return 1;
    return pickColor(*request, world->top(), world->picker);
}

constexpr HostDrawFunctions drawFunctions = {drawPixel, drawBorder, drawText, displaySize};
constexpr HostPanelServices panelTable = {createPanel,  destroyPanel,     openPanel,     addControl,
                                          setControl,   getControl,       drawControl,   setPanel,
                                          setPanelDraw, setPanelUserData, &drawFunctions};
constexpr HostRasterServices rasterTable = {nullptr};

}  // namespace

QWidget* PanelWorld::top() const {
    return open.empty() ? window.data() : static_cast<QWidget*>(open.back().data());
}

QWidget* PanelWorld::under() const {
    return open.size() < 2 ? window.data() : static_cast<QWidget*>(open[open.size() - 2].data());
}

WindowServices panelServices() {
    return {&panelTable, &rasterTable, runColorPicker};
}

void setPanelWorld(PanelWorld* newWorld) {
    world = newWorld;
}

}  // namespace tavora::studio
