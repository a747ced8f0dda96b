#pragma once

#include <QWidget>

#include "studio/panels/drawing.h"

namespace tavora::studio {

/// The background of a panel, which paints what the module drew and is the parent of the controls'
/// widgets. Any number of successive drawing calls causes one repaint. Pixels are panel pixels.
class PanelCanvas : public QWidget {
    Q_OBJECT
  public:
    explicit PanelCanvas(QWidget* parent);

    void setPixel(int red, int green, int blue, int x, int y);
    /// Adds a frame; with `height` 0 a groove.
    void addBorder(int indent, int x, int y, int width, int height);
    /// `x`, `y`: the upper left corner of the text.
    void addText(const QString& text, int colorIndex, int x, int y);
    void clear(const QRect& area);
    void clearAll();

    const PanelDrawing& drawing() const { return drawing_; }
    /// The rectangle of the tab bar above the frame; empty: there is none.
    void setTabBar(const QRect& tabs) { tabs_ = tabs; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    void paintBorder(QPainter& painter, const PanelDrawing::Border& border) const;
    void paintTexts(QPainter& painter) const;
    void changed(const QRect& area);

    PanelDrawing drawing_;
    QRect tabs_;
    QRect dirty_;
};

}  // namespace tavora::studio
