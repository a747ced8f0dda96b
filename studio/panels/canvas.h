#pragma once

#include <QWidget>

#include "studio/panels/drawing.h"

namespace tavora::studio {

/// The ground of a panel: paints what the module drew, holds the controls'
/// widgets. Any number of drawing calls makes one repaint.
class PanelCanvas : public QWidget {
    Q_OBJECT
  public:
    explicit PanelCanvas(QWidget* parent);

    void setPixel(int red, int green, int blue, int x, int y);
    /// A frame; with `height` 0 a groove.
    void addBorder(int indent, int x, int y, int width, int height);
    /// `x`, `y`: the upper left corner of the text.
    void addText(const QString& text, int colorIndex, int x, int y);
    void clear(const QRect& area);
    void clearAll();

    const PanelDrawing& drawing() const { return drawing_; }
    /// The tab bar that stands on the frame; empty: none. Pixels of the panel.
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
