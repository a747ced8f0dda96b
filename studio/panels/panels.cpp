#include "studio/panels/panels.h"

#include <QWidget>

namespace tavora::studio {

struct Panels::Parts {};

Panels::Panels(QWidget* /*window*/, PanelHooks /*hooks*/) : parts_(std::make_unique<Parts>()) {}

Panels::~Panels() = default;

QWidget* Panels::openPanel() const {
    return nullptr;
}

void Panels::close(bool /*confirm*/) {}

bool selectTab(QWidget& /*panel*/, int /*tab*/) {
    return false;
}

}  // namespace tavora::studio
