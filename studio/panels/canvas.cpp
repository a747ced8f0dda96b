#include "studio/panels/canvas.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOptionFrame>
#include <QStyleOptionTabWidgetFrame>
#include <cstdlib>

namespace tavora::studio {
namespace {

constexpr int kTextIndex = 255;  // the panel's text colour

}  // namespace

PanelCanvas::PanelCanvas(QWidget* parent) : QWidget(parent) {}

void PanelCanvas::setPixel(int red, int green, int blue, int x, int y) {
    drawing_.setPixel(red, green, blue, x, y);
    changed(drawing_.pixelBounds().adjusted(-1, -1, 1, 1));
}

void PanelCanvas::addBorder(int indent, int x, int y, int width, int height) {
    drawing_.add(PanelDrawing::Border{indent, QRect(x, y, width, height)});
    changed(rect());
}

void PanelCanvas::addText(const QString& text, int colorIndex, int x, int y) {
    const QFontMetrics metrics = fontMetrics();
    const QRect textRect(x, y, metrics.horizontalAdvance(text), metrics.height());
    drawing_.add(PanelDrawing::Text{text, colorIndex, textRect});
    changed(textRect.adjusted(-2, -2, 2, 2));
}

void PanelCanvas::clear(const QRect& area) {
    drawing_.clear(area);
    changed(area.adjusted(-8, -8, 8, 8));
}

void PanelCanvas::clearAll() {
    drawing_.clearAll();
    changed(rect());
}

void PanelCanvas::changed(const QRect& area) {
    const bool isQueued = !dirty_.isNull();
    dirty_ |= area;
    if (isQueued) return;
    QMetaObject::invokeMethod(
        this, [this] { update(std::exchange(dirty_, QRect())); }, Qt::QueuedConnection);
}

void PanelCanvas::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    for (const bool frames : {true, false}) {
        for (const PanelDrawing::Border& border : drawing_.borders()) {
            if ((border.rect.height() > 0) == frames) paintBorder(painter, border);
        }
    }
    const QRect pixels = drawing_.pixelBounds();
    if (!pixels.isEmpty()) {
        painter.fillRect(pixels.adjusted(-1, -1, 1, 1), palette().color(QPalette::Mid).darker(120));
        painter.drawImage(pixels, drawing_.pixels(), pixels);
    }
    paintTexts(painter);
}

void PanelCanvas::paintBorder(QPainter& painter, const PanelDrawing::Border& border) const {
    const QRect& rect = border.rect;
    const bool tabbed = std::abs(tabs_.bottom() - rect.top()) <= 4 && rect.height() > 0;
    if (tabbed) {
        QStyleOptionTabWidgetFrame option;
        option.initFrom(this);
        option.rect = rect;
        option.shape = QTabBar::RoundedNorth;
        option.lineWidth = 1;
        style()->drawPrimitive(QStyle::PE_FrameTabWidget, &option, &painter, this);
        return;
    }
    QStyleOptionFrame option;
    option.initFrom(this);
    option.rect = rect.height() > 0 ? rect : rect.adjusted(8, 0, -8, 0);
    option.rect.setHeight(std::max(rect.height(), 2));
    option.frameShape = rect.height() > 0 ? QFrame::StyledPanel : QFrame::HLine;
    option.state |= QStyle::State_Sunken;
    option.lineWidth = 1;
    style()->drawControl(QStyle::CE_ShapedFrame, &option, &painter, this);
}

void PanelCanvas::paintTexts(QPainter& painter) const {
    for (const PanelDrawing::Text& text : drawing_.texts()) {
        const auto role = text.colorIndex == kTextIndex ? QPalette::WindowText : QPalette::Text;
        painter.setPen(palette().color(role));
        painter.drawText(text.rect.topLeft() + QPoint(0, fontMetrics().ascent()), text.text);
    }
}

}  // namespace tavora::studio
