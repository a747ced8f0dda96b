#include "studio/window/picture_view.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <cmath>

namespace tavora::studio {
namespace {

/// The zoom factor for one step of the wheel, which is 120 units.
constexpr double kZoomStep = 1.15;
constexpr double kWheelUnits = 120;
/// How far a key press moves the view, as a fraction of the picture's height.
constexpr double kKeyStep = 0.05;

constexpr int kChecker = 10;             // pixels
constexpr int kCheckers[] = {153, 178};  // 0..255, neither of them a usual background

bool pans(const QMouseEvent& event) {
    return (event.buttons() & (Qt::MiddleButton | Qt::RightButton)) != 0 ||
           (event.modifiers() & Qt::ShiftModifier) != 0;
}

}  // namespace

PictureView::PictureView(QWidget* parent) : QWidget(parent) {
    setObjectName("picture");
    setAccessibleName(tr("Live picture"));
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(320, 180);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setToolTip(
        tr("Click a surface to select it, double-click to edit it. "
           "Drag to turn, Shift-drag to pan, wheel to zoom."));
    setToolTipDuration(4000);
}

void PictureView::show(Session* session) {
    if (session_ != nullptr) session_->disconnect(this);
    session_ = session;
    image_ = {};
    if (session_ != nullptr) {
        connect(session_, &Session::pictureChanged, this, &PictureView::updateImage);
        fitPicture();
    }
    update();
}

void PictureView::updateImage() {
    const std::shared_ptr<const LiveFrame> frame = session_->picture().latest();
    if (frame == nullptr || frame->width == 0) return;
    // The image shares ownership of the frame, whose pixels it uses.
    image_ = QImage(
        frame->rgba.data(), frame->width, frame->height, qsizetype{4} * frame->width,
        QImage::Format_RGBA8888,
        [](void* owner) { delete static_cast<std::shared_ptr<const LiveFrame>*>(owner); },
        new std::shared_ptr<const LiveFrame>(frame));
    update();
}

QSize PictureView::pixels() const {
    return size() * devicePixelRatioF();
}

void PictureView::fitPicture() {
    if (session_ == nullptr) return;
    session_->setSize(pixels().width(), pixels().height());
}

void PictureView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    if (image_.isNull()) return painter.fillRect(rect(), palette().color(QPalette::Mid));
    paintCheckers(painter);
    if (image_.size() == pixels()) {
        // Each pixel of the picture is a pixel of the screen.
        painter.scale(1 / devicePixelRatioF(), 1 / devicePixelRatioF());
        return painter.drawImage(QPoint(), image_);
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(rect(), image_);
}

/// Paints the pattern that shows through a transparent picture.
void PictureView::paintCheckers(QPainter& painter) const {
    if (session_->background()) return;
    painter.fillRect(rect(), QColor(kCheckers[0], kCheckers[0], kCheckers[0]));
    for (int y = 0; y * kChecker < height(); ++y) {
        for (int x = y % 2; x * kChecker < width(); x += 2) {
            painter.fillRect(x * kChecker, y * kChecker, kChecker, kChecker,
                             QColor(kCheckers[1], kCheckers[1], kCheckers[1]));
        }
    }
}

void PictureView::resizeEvent(QResizeEvent* event) {
    fitPicture();
    QWidget::resizeEvent(event);
}

void PictureView::mousePressEvent(QMouseEvent* event) {
    pressed_ = last_ = event->position();
    dragging_ = false;
    setInterest(pressed_);
}

void PictureView::mouseMoveEvent(QMouseEvent* event) {
    if (session_ == nullptr || event->buttons() == Qt::NoButton) return;
    const QPointF far = event->position() - pressed_;
    dragging_ = dragging_ || far.manhattanLength() >= QApplication::startDragDistance();
    if (!dragging_) return;
    const QPointF moved = (event->position() - last_) / std::max(1, height());
    last_ = event->position();
    if (pans(*event)) {
        session_->pan(moved.x(), moved.y());
    } else {
        session_->turn(moved.x(), moved.y());
    }
}

void PictureView::mouseReleaseEvent(QMouseEvent* event) {
    if (session_ == nullptr || dragging_ || event->button() != Qt::LeftButton) return;
    emit surfaceClicked(surfaceAt(event->position()));
}

void PictureView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (session_ == nullptr || event->button() != Qt::LeftButton) return;
    dragging_ = true;  // so that the release that follows selects nothing
    const std::ptrdiff_t surface = surfaceAt(event->position());
    if (surface >= 0) emit surfaceDoubleClicked(static_cast<std::size_t>(surface));
}

void PictureView::wheelEvent(QWheelEvent* event) {
    if (session_ == nullptr) return;
    setInterest(event->position());
    session_->zoom(std::pow(kZoomStep, event->angleDelta().y() / kWheelUnits));
}

void PictureView::keyPressEvent(QKeyEvent* event) {
    if (session_ == nullptr) return QWidget::keyPressEvent(event);
    const bool pan = (event->modifiers() & Qt::ShiftModifier) != 0;
    const auto move = [&](double x, double y) { pan ? session_->pan(x, y) : session_->turn(x, y); };
    switch (event->key()) {
        case Qt::Key_Left:
            return move(-kKeyStep, 0);
        case Qt::Key_Right:
            return move(kKeyStep, 0);
        case Qt::Key_Up:
            return move(0, -kKeyStep);
        case Qt::Key_Down:
            return move(0, kKeyStep);
        case Qt::Key_Plus:
        case Qt::Key_Equal:
            return session_->zoom(kZoomStep);
        case Qt::Key_Minus:
            return session_->zoom(1 / kZoomStep);
        default:
            QWidget::keyPressEvent(event);
    }
}

void PictureView::setInterest(const QPointF& position) {
    if (session_ == nullptr) return;
    const QPoint pixel = pixelAt(position);
    session_->setInterest(pixel.x(), pixel.y());
}

std::ptrdiff_t PictureView::surfaceAt(const QPointF& position) const {
    const QPoint pixel = pixelAt(position);
    return session_->picture().surfaceAt(pixel.x(), pixel.y());
}

QPoint PictureView::pixelAt(const QPointF& position) const {
    const QPointF pixel = position * devicePixelRatioF();
    return {static_cast<int>(pixel.x()), static_cast<int>(pixel.y())};
}

}  // namespace tavora::studio
