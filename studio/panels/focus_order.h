#pragma once

#include <QRect>
#include <optional>
#include <vector>

namespace tavora::studio {

/// The order in which the Tab key visits controls with these rectangles, as indices: first those
/// above `box` (a frame around controls), then those in it, those to its left, and the others; each
/// of these groups by rows.
std::vector<std::size_t> focusOrder(const std::vector<QRect>& areas,
                                    const std::optional<QRect>& box);

}  // namespace tavora::studio
