#include "studio/panels/focus_order.h"

#include <algorithm>
#include <numeric>
#include <tuple>

namespace tavora::studio {
namespace {

constexpr int kRowHeight = 10;  // pixels; vertical centres of a row may differ by a few

/// The group in which a control is visited: above the box, in it, left of it, others.
int groupOf(const QRect& area, const std::optional<QRect>& box) {
    if (!box || area.center().y() < box->top()) return 0;
    if (box->contains(area.center())) return 1;
    return area.right() < box->left() ? 2 : 3;
}

}  // namespace

std::vector<std::size_t> focusOrder(const std::vector<QRect>& areas,
                                    const std::optional<QRect>& box) {
    std::vector<std::size_t> order(areas.size());
    std::iota(order.begin(), order.end(), 0u);
    std::ranges::stable_sort(order, {}, [&](std::size_t index) {
        const QRect& area = areas[index];
        return std::tuple(groupOf(area, box), area.center().y() / kRowHeight, area.left(),
                          area.width());
    });
    return order;
}

}  // namespace tavora::studio
