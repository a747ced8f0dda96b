#pragma once

#include <QImage>
#include <QRect>
#include <QString>
#include <optional>
#include <vector>

namespace tavora::studio {

/// What a module drew on a panel: pixels in an image, and a list of borders and texts, which can be
/// painted sharply at any scale. Coordinates are panel pixels. GUI thread.
class PanelDrawing {
  public:
    struct Border {
        int indent;
        QRect rect;  ///< of height 0: a line
        bool operator==(const Border&) const = default;
    };
    struct Text {
        QString text;
        int colorIndex;
        QRect rect;
        bool operator==(const Text&) const = default;
    };

    /// Channels are clamped to 0..255; pixels outside 0..4095 are dropped.
    void setPixel(int red, int green, int blue, int x, int y);
    void add(const Border& border);
    void add(const Text& text);

    /// Removes the texts that intersect an area, and the pixels in it.
    void clear(const QRect& area);
    void clearAll();

    const QImage& pixels() const { return pixels_; }  ///< null when there are none
    const QRect& pixelBounds() const { return pixelBounds_; }
    const std::vector<Border>& borders() const { return borders_; }
    const std::vector<Text>& texts() const { return texts_; }

    /// The highest frame.
    std::optional<QRect> frame() const;
    QRect bounds() const;

  private:
    void grow(int x, int y);

    QImage pixels_;
    QRect pixelBounds_;
    std::vector<Border> borders_;
    std::vector<Text> texts_;
};

}  // namespace tavora::studio
