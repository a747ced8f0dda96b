#include "studio/panels/drawing.h"

#include <algorithm>

namespace tavora::studio {
namespace {

constexpr int kLimit = 4096;
constexpr int kBlock = 256;  // the image grows by blocks

int upToBlock(int size) {
    return (size + kBlock) / kBlock * kBlock;
}

template <class Item>
void addOnce(std::vector<Item>& items, const Item& item) {
    if (std::ranges::find(items, item) == items.end()) items.push_back(item);
}

}  // namespace

void PanelDrawing::setPixel(int red, int green, int blue, int x, int y) {
    if (x < 0 || y < 0 || x >= kLimit || y >= kLimit) return;
    if (x >= pixels_.width() || y >= pixels_.height()) grow(x, y);
    const auto channel = [](int value) { return std::clamp(value, 0, 255); };
    reinterpret_cast<QRgb*>(pixels_.scanLine(y))[x] =
        qRgb(channel(red), channel(green), channel(blue));
    if (!pixelBounds_.contains(x, y)) pixelBounds_ |= QRect(x, y, 1, 1);
}

void PanelDrawing::grow(int x, int y) {
    const QSize size(std::max(pixels_.width(), upToBlock(x)),
                     std::max(pixels_.height(), upToBlock(y)));
    if (!pixels_.isNull()) {
        pixels_ = pixels_.copy(QRect(QPoint(), size));
        return;
    }
    pixels_ = QImage(size, QImage::Format_ARGB32);
    pixels_.fill(Qt::transparent);
}

void PanelDrawing::add(const Border& border) {
    addOnce(borders_, border);
}

void PanelDrawing::add(const Text& text) {
    addOnce(texts_, text);
}

void PanelDrawing::clear(const QRect& area) {
    std::erase_if(texts_, [&](const Text& text) { return text.rect.intersects(area); });
    const QRect painted = area & pixelBounds_;
    for (int y = painted.top(); y <= painted.bottom(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(pixels_.scanLine(y));
        std::fill(line + painted.left(), line + painted.right() + 1, 0u);
    }
}

void PanelDrawing::clearAll() {
    *this = {};
}

std::optional<QRect> PanelDrawing::frame() const {
    std::optional<QRect> largest;
    for (const Border& border : borders_) {
        if (border.rect.height() <= 0) continue;
        if (!largest || border.rect.height() > largest->height()) largest = border.rect;
    }
    return largest;
}

QRect PanelDrawing::bounds() const {
    QRect all = pixelBounds_;
    for (const Border& border : borders_)
        all |= border.rect.adjusted(0, 0, 0, 1);
    for (const Text& text : texts_)
        all |= text.rect;
    return all;
}

}  // namespace tavora::studio
