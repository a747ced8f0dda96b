#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace tavora::studio {

using Triangle = std::array<std::uint32_t, 3>;

/// Which of a file's vertices a mesh uses, and in which order.
class VertexPicks {
  public:
    /// All of `count` vertices.
    explicit VertexPicks(std::size_t count) : count_(count) {}

    /// Each of `count` vertices that `triangles` use, once, in the file's order. Changes the
    /// indices in `triangles` to match; these must be below `count`.
    static VertexPicks used(std::size_t count, std::vector<Triangle>& triangles);

    /// One vertex for each corner of each triangle. Changes the indices in `triangles` to
    /// match.
    static VertexPicks corners(std::size_t count, std::vector<Triangle>& triangles);

    std::size_t size() const { return all_ ? count_ : picks_.size(); }
    /// The index in the file of vertex `i`.
    std::size_t operator[](std::size_t i) const { return all_ ? i : picks_[i]; }

  private:
    bool all_ = true;
    std::size_t count_ = 0;
    std::vector<std::uint32_t> picks_;
};

}  // namespace tavora::studio
