#include "studio/panels/focus_order.h"

#include <algorithm>
#include <numeric>
#include <tuple>

namespace tavora::studio {
namespace {

constexpr int kRow = 10;  // controls of one row may differ by a few pixels

int partOf(const QRect& place, const std::optional<QRect>& box) {
    if (!box || place.center().y() < box->top()) return 0;
    if (box->contains(place.center())) return 1;
    return place.right() < box->left() ? 2 : 3;
}

}  // namespace

std::vector<std::size_t> focusOrder(const std::vector<QRect>& places,
                                    const std::optional<QRect>& box) {
    std::vector<std::size_t> order(places.size());
    std::iota(order.begin(), order.end(), 0u);
    std::ranges::stable_sort(order, {}, [&](std::size_t index) {
        const QRect& place = places[index];
        return std::tuple(partOf(place, box), place.center().y() / kRow, place.left(),
                          place.width());
    });
    return order;
}

}  // namespace tavora::studio
