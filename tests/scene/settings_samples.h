#pragma once

#include <string>
#include <vector>

#include "studio/link/state_block.h"
#include "tests/support/refusal.h"

namespace tavora::studio {

inline void append(StateBlock& block, const StateBlock& more) {
    block.insert(block.end(), more.begin(), more.end());
}

/// A zone as blocks of version 6 hold it.
inline StateBlock zoneItems(float position, std::int32_t blend = 0, float trans = 0) {
    return {0.25F, 0.5F, 0.75F, position, 1.0F, blend, 0.9F, 0.8F, 0, 1, 0.7F, trans, 0};
}

/// A complete block of version 6, each value told apart from its neighbours.
inline StateBlock sampleBlock(const StateBlock& zones, std::int32_t zoneCount,
                              const std::vector<std::string>& lights = {}) {
    StateBlock block{6,    0,     0.02F, 1.0F, 0.1F,   0.2F,   0.3F,  2,     0.12F, 0.9F,
                     0.4F, 0.5F,  0.6F,  1,    0.2F,   0.5F,   0.01F, 0.02F, 0.03F, 0,
                     1.0F, 0.99F, 0.98F, 0.0F, 0.001F, 0.002F, 0.55F, 0.45F, 1,     0.65F};
    block.emplace_back(zoneCount);
    append(block, zones);
    block.emplace_back(static_cast<std::int32_t>(lights.size()));
    block.insert(block.end(), lights.begin(), lights.end());
    append(block, {0.75F, 0.11F, 0.12F, 0.13F, 0.21F, 0.22F, 0.23F, 1,  0,   3,
                   2,     1,     1,     7,     -8,    9,     -10,   11, -12, 1});
    return block;
}

inline StateBlock sampleBlock() {
    StateBlock zones = zoneItems(0);
    append(zones, zoneItems(0.5F, 1));
    append(zones, zoneItems(1));
    return sampleBlock(zones, 3, {"Key", "F\xc3\xbcll"});
}

}  // namespace tavora::studio
