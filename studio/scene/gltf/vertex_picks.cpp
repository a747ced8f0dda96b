#include "studio/scene/gltf/vertex_picks.h"

#include <algorithm>

namespace tavora::studio {
namespace {

/// The vertex indices that occur in `triangles`, ascending. Time and memory are proportional
/// to the triangles, not to the vertices: many primitives may share one large array.
std::vector<std::uint32_t> distinct(const std::vector<Triangle>& triangles) {
    std::vector<std::uint32_t> indices;
    indices.reserve(triangles.size() * 3);
    for (const Triangle& t : triangles)
        indices.insert(indices.end(), t.begin(), t.end());
    if (indices.empty()) return indices;
    const auto [min, max] = std::minmax_element(indices.begin(), indices.end());
    const std::uint32_t first = *min;
    const std::size_t range = std::size_t{*max} - first + 1;
    if (range > 8 * indices.size()) {
        std::sort(indices.begin(), indices.end());
        indices.erase(std::unique(indices.begin(), indices.end()), indices.end());
        return indices;
    }
    std::vector<bool> occurs(range, false);
    for (std::uint32_t index : indices)
        occurs[index - first] = true;
    indices.clear();
    for (std::size_t i = 0; i < range; ++i) {
        if (occurs[i]) indices.push_back(first + static_cast<std::uint32_t>(i));
    }
    return indices;
}

}  // namespace

VertexPicks VertexPicks::used(std::size_t count, std::vector<Triangle>& triangles) {
    VertexPicks picks(count);
    std::vector<std::uint32_t> indices = distinct(triangles);
    if (indices.size() == count) return picks;
    const auto renumbered = [&indices](std::uint32_t i) {
        const auto found = std::lower_bound(indices.begin(), indices.end(), i);
        return static_cast<std::uint32_t>(found - indices.begin());
    };
    for (Triangle& t : triangles)
        t = {renumbered(t[0]), renumbered(t[1]), renumbered(t[2])};
    picks.all_ = false;
    picks.picks_ = std::move(indices);
    return picks;
}

VertexPicks VertexPicks::corners(std::size_t count, std::vector<Triangle>& triangles) {
    VertexPicks picks(count);
    picks.picks_.reserve(triangles.size() * 3);
    std::uint32_t next = 0;
    bool inOrder = true;
    for (Triangle& t : triangles) {
        picks.picks_.insert(picks.picks_.end(), t.begin(), t.end());
        inOrder = inOrder && t == Triangle{next, next + 1, next + 2};
        t = {next, next + 1, next + 2};
        next += 3;
    }
    picks.all_ = inOrder && next == count;
    if (picks.all_) picks.picks_ = {};
    return picks;
}

}  // namespace tavora::studio
