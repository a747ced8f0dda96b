#pragma once

#include <QLineEdit>

namespace tavora::studio {

/// A number to type, to step through with the arrow and page keys or the wheel,
/// and to change by dragging sideways. Shows any number it is given; only what
/// the user enters is kept within its range.
class NumberField : public QLineEdit {
    Q_OBJECT
  public:
    struct Range {
        double minimum = 0;
        double maximum = 100;
        int decimals = 0;     ///< shown, where there are any
        double perPixel = 1;  ///< of dragging
        bool bar = false;     ///< shows where in the range the number is
    };
    NumberField(const Range& range, QWidget* parent);

    /// The number as it was given, or as the user entered it.
    double number() const { return number_; }
    /// Does not count as the user's.
    void setNumber(double number);

    /// Takes over what was typed. False when nothing was.
    bool commit();
    /// As the user does it: within the range, with the decimals that it shows.
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
    bool takeBack();
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
