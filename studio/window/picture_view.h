#pragma once

#include <QImage>
#include <QPoint>
#include <QWidget>

#include "studio/window/session.h"

namespace tavora::studio {

/// Shows the live picture; clicking selects surfaces, and dragging moves the view. GUI thread.
class PictureView : public QWidget {
    Q_OBJECT
  public:
    explicit PictureView(QWidget* parent);

    /// `session` must outlive the view, or exist until the next call of show(); null: none.
    void show(Session* session);

    QSize sizeHint() const override { return {960, 540}; }
    /// The picture on the screen, for tests.
    const QImage& image() const { return image_; }

  signals:
    /// The picture was clicked; -1: there is no surface at that pixel.
    void surfaceClicked(std::ptrdiff_t surface);
    void surfaceDoubleClicked(std::size_t surface);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void updateImage();
    void fitPicture();
    void paintCheckers(QPainter& painter) const;
    QSize pixels() const;  ///< the size in device pixels
    void setInterest(const QPointF& position);
    QPoint pixelAt(const QPointF& position) const;
    std::ptrdiff_t surfaceAt(const QPointF& position) const;

    Session* session_ = nullptr;
    QImage image_;
    QPointF pressed_;
    QPointF last_;
    bool dragging_ = false;
};

}  // namespace tavora::studio
