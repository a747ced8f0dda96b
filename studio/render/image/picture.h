#pragma once

#include <cstddef>
#include <vector>

namespace tavora::studio {

/// A rectangle of pixels, x to the right, y down; `right` and `bottom` excluded.
struct PixelBox {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    int width() const { return right - left; }
    int height() const { return bottom - top; }
    bool operator==(const PixelBox&) const = default;
};

/// A rendered picture: scene-linear RGBA, colour premultiplied by alpha.
struct Picture {
    int width = 0;  ///< of the whole picture (display window)
    int height = 0;
    PixelBox window;          ///< the part that `rgba` holds
    std::vector<float> rgba;  ///< rows of the window from the top, 4 floats a pixel

    const float* pixel(int x, int y) const { return &rgba[offset(x, y)]; }
    float* pixel(int x, int y) { return &rgba[offset(x, y)]; }

  private:
    std::size_t offset(int x, int y) const {
        const auto row = static_cast<std::size_t>(y - window.top);
        const auto column = static_cast<std::size_t>(x - window.left);
        return (row * static_cast<std::size_t>(window.width()) + column) * 4;
    }
};

}  // namespace tavora::studio
