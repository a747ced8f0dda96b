#pragma once

#include <QLineEdit>

namespace tavora::studio {

/// A number that can be typed, changed by the arrow and page keys or the wheel, and dragged
/// horizontally. Shows any number that is set; only numbers that the user enters are limited to the
/// range.
class NumberField : public QLineEdit {
    Q_OBJECT
  public:
    struct Range {
        double minimum = 0;
        double maximum = 100;
        int decimals = 0;     ///< shown at most
        double perPixel = 1;  ///< change of the number for a pixel of dragging
        bool bar = false;     ///< whether a bar shows the number's position in the range
    };
    NumberField(const Range& range, QWidget* parent);

    /// The number as it was given, or as the user entered it.
    double number() const { return number_; }
    /// Does not emit entered().
    void setNumber(double number);

    /// Enters what was typed. False when nothing was typed.
    bool commit();
    /// Enters a number like the user: limited to the range and rounded to the decimals.
    void enter(double number);

  signals:
    /// The user changed the number.
    void entered();

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    bool revert();
    void dragTo(int distance, bool fine);
    void setTyping(bool typing);
    void showNumber();

    Range range_;
    double number_ = 0;
    bool typing_ = false;  ///< the mouse places the text cursor
    bool pressed_ = false;
    bool dragging_ = false;
    int pressX_ = 0;
    double pressNumber_ = 0;
    int wheel_ = 0;
};

}  // namespace tavora::studio
