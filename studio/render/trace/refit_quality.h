#pragma once

#include <ImathVec.h>
#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace tavora::studio {

/// Tells when the boxes of a mesh's tree, refitted as its vertices move, overlap so much
/// that building the tree again pays: by the area of the boxes around groups of triangles
/// that lay side by side when it was built, in proportion to the box around them all.
/// By the surface area heuristic a ray visits boxes in proportion to that. One thread.
class RefitQuality {
  public:
    using Triangles = std::span<const std::array<std::uint32_t, 3>>;
    using Vertices = std::span<const Imath::V3f>;

    /// For a tree that was built of these.
    RefitQuality(Triangles triangles, Vertices vertices);

    /// Whether a tree that was refitted to `vertices` is no longer good enough.
    bool isDegraded(Triangles triangles, Vertices vertices) const;

  private:
    double relativeArea(Triangles triangles, Vertices vertices) const;

    std::vector<std::uint32_t> order_;  ///< triangles, along a curve through their middles
    double atStart_;
};

}  // namespace tavora::studio
