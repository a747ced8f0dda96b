#pragma once

#include <QPushButton>

#include "studio/panels/control.h"

namespace tavora::studio {

/// "ButtonControl": fires when pressed.
class ButtonControl : public PanelControl {
  public:
    explicit ButtonControl(const ControlSeed& seed);
};

/// A button that is dragged horizontally.
class DragButton : public QPushButton {
    Q_OBJECT
  public:
    DragButton(const QString& text, QWidget* parent);

  signals:
    void began();
    /// `distance`: since began(), in pixels, an even number; positive to the right.
    void moved(int distance);

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    int pressX_ = 0;
    int distance_ = 0;
};

/// "DragButtonControl": fires when it is pressed and at every move. Its value is the distance, an
/// unused number, and the number of moves, which is 0 for the press, so that modules do not take a
/// press for the end of an earlier drag.
class DragButtonControl : public PanelControl {
  public:
    explicit DragButtonControl(const ControlSeed& seed);

  protected:
    ControlValue value() const override { return value_; }
    void show(const ControlValue& value) override { value_ = asVector(value); }

  private:
    std::array<int, 3> value_{};
};

}  // namespace tavora::studio
