#include "studio/scene/gltf/vertex_picks.h"

#include <algorithm>

namespace tavora::studio {
namespace {

/// The numbers that occur in `triangles`, ascending. Work and memory go with
/// the triangles, not with the vertices: many primitives may share one big pool.
std::vector<std::uint32_t> distinct(const std::vector<Triangle>& triangles) {
    std::vector<std::uint32_t> numbers;
    numbers.reserve(triangles.size() * 3);
    for (const Triangle& t : triangles)
        numbers.insert(numbers.end(), t.begin(), t.end());
    if (numbers.empty()) return numbers;
    const auto [least, most] = std::minmax_element(numbers.begin(), numbers.end());
    const std::uint32_t first = *least;
    const std::size_t range = std::size_t{*most} - first + 1;
    if (range > 8 * numbers.size()) {
        std::sort(numbers.begin(), numbers.end());
        numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
        return numbers;
    }
    std::vector<bool> occurs(range, false);
    for (std::uint32_t number : numbers)
        occurs[number - first] = true;
    numbers.clear();
    for (std::size_t i = 0; i < range; ++i) {
        if (occurs[i]) numbers.push_back(first + static_cast<std::uint32_t>(i));
    }
    return numbers;
}

}  // namespace

VertexPicks VertexPicks::used(std::size_t count, std::vector<Triangle>& triangles) {
    VertexPicks picks(count);
    std::vector<std::uint32_t> numbers = distinct(triangles);
    if (numbers.size() == count) return picks;
    const auto renumbered = [&numbers](std::uint32_t i) {
        const auto found = std::lower_bound(numbers.begin(), numbers.end(), i);
        return static_cast<std::uint32_t>(found - numbers.begin());
    };
    for (Triangle& t : triangles)
        t = {renumbered(t[0]), renumbered(t[1]), renumbered(t[2])};
    picks.all_ = false;
    picks.picks_ = std::move(numbers);
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
