#include "studio/panels/panels.h"

#include <QTabBar>
#include <utility>

#include "studio/panels/host_tables.h"
#include "studio/panels/zone_markers.h"

namespace tavora::studio {

struct Panels::Parts {
    PanelWorld world;
};

Panels::Panels(QWidget* window, PanelHooks hooks) : parts_(std::make_unique<Parts>()) {
    parts_->world.hooks = std::move(hooks);
    parts_->world.window = window;
    setPanelWorld(&parts_->world);
    offerWindowServices(panelServices());
}

Panels::~Panels() {
    offerWindowServices({});
    setPanelWorld(nullptr);
    for (const auto& [id, panel] : parts_->world.panels.all())
        panel->retire();
    delete parts_->world.reusableFrame;
}

QWidget* Panels::openPanel() const {
    const auto& open = parts_->world.open;
    return open.empty() ? nullptr : open.back().data();
}

void Panels::close(bool confirm) {
    const int result = confirm ? QDialog::Accepted : QDialog::Rejected;
    if (parts_->world.picker != nullptr) parts_->world.picker->done(result);
    const auto open = parts_->world.open;  // closing may change it
    for (auto panel = open.rbegin(); panel != open.rend(); ++panel) {
        if (panel->isNull()) continue;
        confirm ? (*panel)->accept() : (*panel)->reject();
    }
}

void Panels::keepWindow(bool keep) {
    PanelWorld& world = parts_->world;
    world.keepWindow = keep;
    if (keep || world.reusableFrame.isNull() || !world.open.empty()) return;
    world.reusableFrame->hide();
    world.reusableFrame->deleteLater();
    world.reusableFrame = nullptr;
}

bool selectTab(QWidget& panel, int tab) {
    auto* tabs = panel.findChild<QTabBar*>();
    if (tabs == nullptr || tabs->isHidden() || tab < 0 || tab >= tabs->count()) return false;
    tabs->setCurrentIndex(tab);
    return true;
}

namespace {

ZoneMarkers* markersOf(const QWidget& panel) {
    const auto* dialog = qobject_cast<const PanelDialog*>(&panel);
    return dialog == nullptr ? nullptr : dialog->markers();
}

}  // namespace

std::optional<int> selectedZone(const QWidget& panel) {
    const ZoneMarkers* markers = markersOf(panel);
    return markers == nullptr ? std::nullopt : markers->selected();
}

void selectZone(QWidget& panel, int zone) {
    if (ZoneMarkers* markers = markersOf(panel)) markers->select(zone);
}

}  // namespace tavora::studio
