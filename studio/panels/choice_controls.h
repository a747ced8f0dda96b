#pragma once

#include "studio/panels/control.h"

class QButtonGroup;
class QComboBox;
class QTabBar;

namespace tavora::studio {

/// A choice of one of several items. Its value is the one that the module set, even if there is no
/// such item, until the user chooses one.
class OneOfControl : public PanelControl {
  public:
    using PanelControl::PanelControl;

  protected:
    ControlValue value() const override { return chosen_; }
    void show(const ControlValue& value) override;
    virtual void showItem(int item) = 0;
    /// To be called when the user chooses an item; fires when it is another one.
    void choose(int item);

  private:
    int chosen_ = 0;
};

/// "PopupControl".
class PopupControl : public OneOfControl {
  public:
    explicit PopupControl(const ControlSeed& seed);

  protected:
    void showItem(int item) override;

  private:
    QComboBox* list_;
};

/// "ChoiceControl": buttons in a row, one of which is checked.
class ChoiceControl : public OneOfControl {
  public:
    explicit ChoiceControl(const ControlSeed& seed);

    std::vector<QWidget*> focusWidgets() const override;

  protected:
    void showItem(int item) override;

  private:
    QButtonGroup* group_;
};

/// "TabChoiceControl": tabs above a frame that the module draws.
class TabChoiceControl : public OneOfControl {
  public:
    explicit TabChoiceControl(const ControlSeed& seed);

    void place(const LayoutItem& item) override;

  protected:
    void showItem(int item) override;

  private:
    QTabBar* tabs_;
};

/// "BoolControl": the value counts as checked unless it is 0.
class BoolControl : public OneOfControl {
  public:
    explicit BoolControl(const ControlSeed& seed);

  protected:
    void showItem(int item) override;
};

}  // namespace tavora::studio
