#include "studio/render/threads/tiles.h"

#include <algorithm>

namespace tavora::studio {

std::vector<PixelBox> tilesOf(const PixelBox& window) {
    std::vector<PixelBox> tiles;
    for (int top = window.top; top < window.bottom; top += kTileWidth) {
        for (int left = window.left; left < window.right; left += kTileWidth) {
            tiles.push_back({left, top, std::min(left + kTileWidth, window.right),
                             std::min(top + kTileWidth, window.bottom)});
        }
    }
    return tiles;
}

}  // namespace tavora::studio
