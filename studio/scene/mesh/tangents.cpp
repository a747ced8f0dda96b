#include "studio/scene/mesh/tangents.h"

#include <algorithm>
#include <numeric>
#include <tuple>

#include "studio/scene/image/texture_lookup.h"
#include "studio/scene/mesh/normals.h"
#include "studio/util/deterministic_math.h"

namespace tavora::studio {
namespace {

using Imath::V2d;
using Imath::V3d;
using Imath::V3f;
using Imath::V4f;

using Index = std::uint32_t;

/// The orientation of a triangle's UV coordinates.
struct UvDirection {
    V3d tangent{0, 0, 0};  ///< direction in which u grows; 0 when the UVs have no area
    bool mirrored = false;
};

/// An edge from `corner` to the next corner of its triangle. `low` and `high` are the lower
/// and the higher vertex of its ends.
struct Edge {
    Index low;
    Index high;
    Index corner;

    auto order() const { return std::tie(low, high, corner); }
};

V3d inPlane(const V3d& v, const V3d& normal) {
    return v - normal * normal.dot(v);
}

V3d unitOrNone(const V3d& v) {
    return V3d(unit(v, V3f(0)));
}

/// Makes the tangents of one mesh. A corner's index is three times its triangle's index plus
/// its index in the triangle. Corners that share a tangent form a group, a disjoint-set
/// forest.
class TangentMaker {
  public:
    TangentMaker(const Mesh& mesh, const TextureUse& use)
        : mesh_(mesh),
          use_(use),
          uvs_(mesh.uvs[static_cast<std::size_t>(use.uvSet)]),
          directions_(mesh.triangles.size()),
          group_(mesh.triangles.size() * 3),
          sums_(mesh.triangles.size() * 3, V3d(0)) {}

    std::vector<CornerTangents> make() {
        weld();
        for (Index t = 0; t < directions_.size(); ++t)
            directions_[t] = directionOf(t);
        std::iota(group_.begin(), group_.end(), Index{0});
        joinAtEdges();
        for (Index corner = 0; corner < group_.size(); ++corner)
            sums_[groupOf(corner)] += contributionOf(corner);
        return result();
    }

  private:
    Index vertexOf(Index corner) const { return mesh_.triangles[corner / 3][corner % 3]; }
    static Index next(Index corner) { return corner % 3 == 2 ? corner - 2 : corner + 1; }
    Index weldedOf(Index corner) const { return welded_[vertexOf(corner)]; }
    V3d positionOf(Index corner) const { return V3d(mesh_.positions[vertexOf(corner)]); }

    /// Finds, for each vertex, the first of those that have the same position, normal and UV.
    void weld() {
        const auto key = [this](Index v) {
            const V3f& p = mesh_.positions[v];
            const V3f& n = mesh_.normals[v];
            return std::make_tuple(p.x, p.y, p.z, n.x, n.y, n.z, uvs_[v].x, uvs_[v].y);
        };
        std::vector<Index> sorted(mesh_.positions.size());
        std::iota(sorted.begin(), sorted.end(), Index{0});
        std::sort(sorted.begin(), sorted.end(), [&key](Index a, Index b) {
            return std::make_tuple(key(a), a) < std::make_tuple(key(b), b);
        });
        welded_.resize(sorted.size());
        for (std::size_t i = 0; i < sorted.size(); ++i) {
            const bool isSame = i > 0 && key(sorted[i]) == key(sorted[i - 1]);
            welded_[sorted[i]] = isSame ? welded_[sorted[i - 1]] : sorted[i];
        }
    }

    /// In files v grows downwards; the y axis of a normal map points upwards.
    V2d uvOf(Index corner) const {
        const V2d uv = transformUv(use_, V2d(uvs_[vertexOf(corner)]));
        return {uv.x, -uv.y};
    }

    UvDirection directionOf(Index triangle) const {
        const Index corner = triangle * 3;
        const V3d along1 = positionOf(corner + 1) - positionOf(corner);
        const V3d along2 = positionOf(corner + 2) - positionOf(corner);
        const V2d uv1 = uvOf(corner + 1) - uvOf(corner);
        const V2d uv2 = uvOf(corner + 2) - uvOf(corner);
        const double area = uv1.x * uv2.y - uv1.y * uv2.x;
        if (area == 0) return {};
        const V3d tangent = unitOrNone(along1 * uv2.y - along2 * uv1.y);
        return {area > 0 ? tangent : -tangent, area < 0};
    }

    bool hasDirection(Index corner) const { return directions_[corner / 3].tangent != V3d(0); }

    std::vector<Edge> edges() const {
        std::vector<Edge> all;
        all.reserve(group_.size());
        for (Index corner = 0; corner < group_.size(); ++corner) {
            const auto [low, high] = std::minmax({weldedOf(corner), weldedOf(next(corner))});
            if (hasDirection(corner)) all.push_back({low, high, corner});
        }
        std::sort(all.begin(), all.end(),
                  [](const Edge& a, const Edge& b) { return a.order() < b.order(); });
        return all;
    }

    /// Joins the corners at both ends of each edge that two triangles share, when both or
    /// neither of them mirror the texture.
    void joinAtEdges() {
        const std::vector<Edge> sorted = edges();
        const Edge* last[2] = {};  // the previous edge that is not mirrored, and that is
        for (const Edge& edge : sorted) {
            const Edge*& before = last[directions_[edge.corner / 3].mirrored ? 1 : 0];
            if (before != nullptr && before->low == edge.low && before->high == edge.high) {
                join(endOf(*before, edge.low), endOf(edge, edge.low));
                join(endOf(*before, edge.high), endOf(edge, edge.high));
            }
            before = &edge;
        }
    }

    Index endOf(const Edge& edge, Index vertex) const {
        return weldedOf(edge.corner) == vertex ? edge.corner : next(edge.corner);
    }

    Index groupOf(Index corner) {
        while (group_[corner] != corner)
            corner = group_[corner] = group_[group_[corner]];
        return corner;
    }

    void join(Index a, Index b) {
        const auto [low, high] = std::minmax({groupOf(a), groupOf(b)});
        group_[high] = low;
    }

    /// What a corner's triangle adds to the tangent of the corner's group.
    V3d contributionOf(Index corner) const {
        if (!hasDirection(corner)) return V3d(0);
        const V3d normal(mesh_.normals[vertexOf(corner)]);
        const V3d here = positionOf(corner);
        const V3d one = unitOrNone(inPlane(positionOf(next(corner)) - here, normal));
        const V3d other = unitOrNone(inPlane(positionOf(next(next(corner))) - here, normal));
        const double angle = deterministic::arcCosine(one.dot(other));
        return unitOrNone(inPlane(directions_[corner / 3].tangent, normal)) * angle;
    }

    V4f tangentOf(Index corner) {
        const V3f direction = unit(sums_[groupOf(corner)], V3f(0));
        return {direction.x, direction.y, direction.z,
                directions_[corner / 3].mirrored ? -1.0F : 1.0F};
    }

    /// Corners of triangles without an area in UV get the tangent of another corner at the
    /// same vertex.
    std::vector<CornerTangents> result() {
        std::vector<CornerTangents> tangents(directions_.size());
        std::vector<V4f> atVertex(mesh_.positions.size(), V4f(0, 0, 0, 1));
        for (Index corner = static_cast<Index>(group_.size()); corner-- > 0;) {
            if (!hasDirection(corner)) continue;
            const V4f tangent = tangentOf(corner);
            tangents[corner / 3][corner % 3] = atVertex[weldedOf(corner)] = tangent;
        }
        for (Index corner = 0; corner < group_.size(); ++corner) {
            if (!hasDirection(corner))
                tangents[corner / 3][corner % 3] = atVertex[weldedOf(corner)];
        }
        return tangents;
    }

    const Mesh& mesh_;
    const TextureUse& use_;
    const std::vector<Imath::V2f>& uvs_;
    std::vector<Index> welded_;
    std::vector<UvDirection> directions_;
    std::vector<Index> group_;  // another corner of the same group, or itself; by corner
    std::vector<V3d> sums_;     // of contributions, by the root corner of the group
};

}  // namespace

std::vector<CornerTangents> makeTangents(const Mesh& mesh, const TextureUse& use) {
    const auto set = static_cast<std::size_t>(use.uvSet);
    if (set >= mesh.uvs.size() || mesh.uvs[set].empty()) return {};
    return TangentMaker(mesh, use).make();
}

std::vector<CornerTangents> tangentsOfVertices(const Mesh& mesh, const std::vector<V4f>& vertices) {
    std::vector<CornerTangents> tangents(mesh.triangles.size());
    for (std::size_t t = 0; t < tangents.size(); ++t) {
        for (std::size_t i = 0; i < 3; ++i) {
            const V4f& v = vertices[mesh.triangles[t][i]];
            const V3f direction = unit(V3d(v.x, v.y, v.z), V3f(0));
            tangents[t][i] = {direction.x, direction.y, direction.z, v.w < 0 ? -1.0F : 1.0F};
        }
    }
    return tangents;
}

}  // namespace tavora::studio
