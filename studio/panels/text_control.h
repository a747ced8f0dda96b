#pragma once

#include "studio/panels/control.h"

namespace tavora::studio {

/// "TextControl": lines of text, with their leading blanks.
class TextControl : public PanelControl {
  public:
    explicit TextControl(const ControlSeed& seed);

    std::vector<QWidget*> focusWidgets() const override { return {}; }
    QString ownText() const override;
};

}  // namespace tavora::studio
