#pragma once

#include "studio/panels/control.h"

namespace tavora::studio {

/// "TextControl": lines of text, blanks in front kept.
class TextControl : public PanelControl {
  public:
    explicit TextControl(const ControlSeed& seed);

    std::vector<QWidget*> focusWidgets() const override { return {}; }
    QString ownText() const override;
};

}  // namespace tavora::studio
