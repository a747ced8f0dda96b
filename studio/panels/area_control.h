#pragma once

#include "studio/panels/control.h"

namespace tavora::studio {

/// A transparent place to press, by mouse, or by a caret that the arrow keys
/// move.
class AreaWidget : public QWidget {
    Q_OBJECT
  public:
    explicit AreaWidget(QWidget* parent);

    /// Of the last press, from the upper left corner.
    QPoint mouse() const { return mouse_; }
    /// How far the caret goes; 0: there is none.
    void setReach(int reach) { reach_ = reach; }
    /// Counts as the user's.
    void press(QPoint mouse);

  signals:
    void pressed();

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override { mousePressEvent(event); }
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    void moveCaret(int distance);

    QPoint mouse_;
    int caret_ = -1;  ///< -1: not yet moved
    int reach_ = 0;
    bool keys_ = false;  ///< the keyboard is in use, so the caret shows
};

/// "AreaControl": fires once a press and reports where.
class AreaControl : public PanelControl {
  public:
    explicit AreaControl(const ControlSeed& seed);

    void place(const LayoutItem& item) override;

  protected:
    QPoint mouse() const override { return area_->mouse(); }

  private:
    AreaWidget* area_;
};

}  // namespace tavora::studio
