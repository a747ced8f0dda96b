#include "studio/edit/surface_settings.h"

#include <algorithm>
#include <bit>

namespace tavora::studio {
namespace {

bool sameItem(const StateItem& a, const StateItem& b) {
    const auto* left = std::get_if<float>(&a);
    const auto* right = std::get_if<float>(&b);
    if (left == nullptr || right == nullptr) return a == b;
    return std::bit_cast<std::uint32_t>(*left) == std::bit_cast<std::uint32_t>(*right);
}

}  // namespace

bool sameBlock(const std::optional<StateBlock>& a, const std::optional<StateBlock>& b) {
    if (!a || !b) return a.has_value() == b.has_value();
    return std::equal(a->begin(), a->end(), b->begin(), b->end(), sameItem);
}

}  // namespace tavora::studio
