#pragma once

#include <QRect>
#include <optional>
#include <vector>

namespace tavora::studio {

/// The order in which the Tab key goes through places on a panel, as indices:
/// by rows, except that the inside of `box` (a frame of controls) is gone
/// through as one after what stands above it, then what stands to its left.
std::vector<std::size_t> focusOrder(const std::vector<QRect>& places,
                                    const std::optional<QRect>& box);

}  // namespace tavora::studio
