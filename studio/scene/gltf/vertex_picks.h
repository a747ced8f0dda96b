#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace tavora::studio {

using Triangle = std::array<std::uint32_t, 3>;

/// Which of a file's vertices a mesh takes, in which order.
class VertexPicks {
  public:
    /// All of `count` vertices.
    explicit VertexPicks(std::size_t count) : count_(count) {}

    /// Each vertex that `triangles` use, once, in the order of the file;
    /// renumbers the triangles to match. All indices must be below `count`.
    static VertexPicks used(std::size_t count, std::vector<Triangle>& triangles);

    /// One vertex for each corner of each triangle; renumbers the triangles.
    static VertexPicks corners(std::size_t count, std::vector<Triangle>& triangles);

    std::size_t size() const { return all_ ? count_ : picks_.size(); }
    /// The file's number of vertex `i`.
    std::size_t operator[](std::size_t i) const { return all_ ? i : picks_[i]; }

  private:
    bool all_ = true;
    std::size_t count_ = 0;
    std::vector<std::uint32_t> picks_;
};

}  // namespace tavora::studio
