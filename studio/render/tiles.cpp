#include "studio/render/tiles.h"

#include <algorithm>

namespace tavora::studio {
namespace {

constexpr int kTile = 32;

}  // namespace

std::vector<PixelBox> tilesOf(const PixelBox& window) {
    std::vector<PixelBox> tiles;
    for (int top = window.top; top < window.bottom; top += kTile) {
        for (int left = window.left; left < window.right; left += kTile) {
            tiles.push_back({left, top, std::min(left + kTile, window.right),
                             std::min(top + kTile, window.bottom)});
        }
    }
    return tiles;
}

}  // namespace tavora::studio
