#pragma once

#include "studio/panels/control.h"
#include "studio/panels/number_field.h"

namespace tavora::studio {

/// "PercentControl" and "NumControl": a label and a number.
class NumberControl : public PanelControl {
  public:
    NumberControl(const ControlSeed& seed, const NumberField::Range& range, int width);

  protected:
    ControlValue value() const override { return number_->number(); }
    void show(const ControlValue& value) override { number_->setNumber(asNumber(value)); }

  private:
    NumberField* number_;
};

PanelControl* makePercentControl(const ControlSeed& seed);
PanelControl* makeNumControl(const ControlSeed& seed);

/// "MiniRGBControl": a patch of the colour, and its channels, 0..255 each.
class MiniRgbControl : public PanelControl {
  public:
    explicit MiniRgbControl(const ControlSeed& seed);

    std::vector<QWidget*> focusWidgets() const override;

  protected:
    ControlValue value() const override;
    void show(const ControlValue& value) override;

  private:
    std::array<NumberField*, 3> channels_{};
    QWidget* patch_;
};

}  // namespace tavora::studio
