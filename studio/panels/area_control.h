#pragma once

#include <optional>

#include "studio/panels/control.h"

namespace tavora::studio {

/// A transparent area that can be pressed by mouse, or by keys at a caret that the arrow keys move.
class AreaWidget : public QWidget {
    Q_OBJECT
  public:
    explicit AreaWidget(QWidget* parent);

    /// The position of the last press, relative to the upper left corner.
    QPoint mouse() const { return mouse_; }
    /// The caret moves from 0 to `range` pixels; 0: there is no caret.
    void setCaretRange(int range) { caretRange_ = range; }
    /// Presses the area at a position, like the user.
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
    int caretX() const { return caretX_.value_or(caretRange_ / 2); }

    QPoint mouse_;
    std::optional<int> caretX_;  ///< empty: in the middle, since it was not moved yet
    int caretRange_ = 0;
    bool usesKeys_ = false;  ///< the user works with the keyboard, so the caret is visible
};

/// "AreaControl": fires once for each press and reports its position.
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
