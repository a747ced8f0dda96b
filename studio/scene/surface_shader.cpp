#include "studio/scene/surface_shader.h"

#include <algorithm>
#include <bit>
#include <cstdint>

namespace tavora::studio {
namespace {

bool sameItem(const StateItem& a, const StateItem& b) {
    const auto* left = std::get_if<float>(&a);
    const auto* right = std::get_if<float>(&b);
    if (left == nullptr || right == nullptr) return a == b;
    return std::bit_cast<std::uint32_t>(*left) == std::bit_cast<std::uint32_t>(*right);
}

}  // namespace

bool operator==(const SurfaceShader& a, const SurfaceShader& b) {
    return a.server == b.server && a.enabled == b.enabled && sameBits(a.block, b.block);
}

const StateBlock* activeBlock(const std::optional<SurfaceShader>& shader) {
    return shader && shader->enabled ? &shader->block : nullptr;
}

bool sameBits(const StateBlock& a, const StateBlock& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), sameItem);
}

}  // namespace tavora::studio
