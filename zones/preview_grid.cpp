#include "zones/preview_grid.h"

namespace tavora {

std::int32_t grid[gridColumns][gridRows] = {};

void fillPreviewGrid() {
    constexpr int square = 5;
    for (int x = 1; x < gridColumns; ++x) {
        for (int row = 0; row < gridRows - 1; ++row) {
            const bool white = ((x - 1) / square + row / square) % 2 == 0;
            grid[x][row] = white ? 255 : 0;
        }
    }
}

}  // namespace tavora
