#pragma once

#include <cstdint>

namespace tavora {

inline constexpr int gridColumns = 391;
inline constexpr int gridRows = 21;

/// The checkerboard that shows through partly opaque zones in the gradient
/// preview, by column and row: 255 white, 0 black. Squares of 5 by 5, a white
/// one at column 1, row 0; column 0 and row 20 lie outside the board and are 0.
extern std::int32_t grid[gridColumns][gridRows];

/// Fills `grid`; the result is the same every time. [interface]
void fillPreviewGrid();

}  // namespace tavora
