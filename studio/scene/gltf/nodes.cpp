#include "studio/scene/gltf/nodes.h"

#include <ImathQuat.h>
#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>

#include "studio/util/text.h"

namespace tavora::studio {
namespace {

using Imath::M44d;
using Imath::V3d;

constexpr double kFlat = 1e-12;      // of a flat transform: determinant / (longest axis)^3
constexpr double kThickness = 1e-6;  // of its lost axis, relative to the longest

bool isFinite(const M44d& m) {
    for (int r = 0; r < 4; ++r) {
        for (int c = 0; c < 4; ++c) {
            if (!std::isfinite(m[r][c])) return false;
        }
    }
    return true;
}

V3d vectorOf(const std::array<double, 3>& values) {
    return {values[0], values[1], values[2]};
}

/// The transform of node `index` relative to its parent. Throws Error when it is not finite.
M44d toParent(const GltfSource& source, int index) {
    const gltf::Node& node = gltf::at(source.document.nodes, index);
    M44d m;
    if (node.matrix) {  // its last column is taken to be 0, 0, 0, 1, whatever the file has
        for (int i = 0; i < 16; ++i) {
            if (i % 4 != 3) m[i / 4][i % 4] = (*node.matrix)[static_cast<std::size_t>(i)];
        }
    } else {
        const auto& [x, y, z, w] = node.rotation;
        M44d scaling;
        scaling.setScale(vectorOf(node.scale));
        m = scaling * Imath::Quatd(w, x, y, z).normalized().toMatrix44();
        for (int i = 0; i < 3; ++i)
            m[3][i] = node.translation[static_cast<std::size_t>(i)];
    }
    if (!isFinite(m)) {
        source.fail(fmt::format(
            "node {} is placed by values that are not numbers: repair the model", index));
    }
    return m;
}

/// Traverses the trees of nodes, parents first. Without recursion, so that a chain of nodes
/// may have any length.
class Walker {
  public:
    explicit Walker(const GltfSource& source)
        : source_(source), seen_(source.document.nodes.size(), false) {
        placed_.toWorld.resize(seen_.size());
        placed_.visible.resize(seen_.size());
    }

    PlacedNodes place() {
        walkScene();
        placed_.shown = order_;
        // Joints may be outside the scene.
        for (int root : roots()) {
            if (!seen_[static_cast<std::size_t>(root)]) walk(root, false);
        }
        return std::move(placed_);
    }

  private:
    void walkScene() {
        const gltf::Scene* scene = shownScene(source_.document);
        for (int root : scene == nullptr ? roots() : scene->nodes)
            walk(root, true);
    }

    /// All nodes without a parent.
    std::vector<int> roots() const {
        std::vector<bool> child(seen_.size(), false);
        for (const gltf::Node& node : source_.document.nodes) {
            for (int c : node.children)
                child[static_cast<std::size_t>(c)] = true;
        }
        std::vector<int> result;
        for (std::size_t i = 0; i < child.size(); ++i) {
            if (!child[i]) result.push_back(static_cast<int>(i));
        }
        return result;
    }

    void walk(int root, bool mustBeNew) {
        std::vector<Step> todo = {{root, M44d(), true}};
        while (!todo.empty()) {
            const Step step = todo.back();
            todo.pop_back();
            const gltf::Node& node = gltf::at(source_.document.nodes, step.node);
            const auto index = static_cast<std::size_t>(step.node);
            if (seen_[index] && !mustBeNew) continue;
            visit(step);
            for (auto c = node.children.rbegin(); c != node.children.rend(); ++c)
                todo.push_back({*c, placed_.toWorld[index], placed_.visible[index]});
        }
    }

    struct Step {
        int node;
        M44d parent;     ///< the parent's transform to the world
        bool isVisible;  ///< whether the parent is
    };

    void visit(const Step& step) {
        const auto index = static_cast<std::size_t>(step.node);
        if (seen_[index]) {
            source_.fail(
                fmt::format("node {} \"{}\" has two parents or is its own: repair the node tree",
                            step.node, shortened(source_.document.nodes[index].name)));
        }
        seen_[index] = true;
        placed_.toWorld[index] = toParent(source_, step.node) * step.parent;
        placed_.visible[index] = step.isVisible && source_.document.nodes[index].visible;
        if (!isFinite(placed_.toWorld[index])) {
            source_.fail(fmt::format("node {} \"{}\" lies beyond all numbers: repair the model",
                                     step.node, shortened(source_.document.nodes[index].name)));
        }
        order_.push_back(step.node);
    }

    const GltfSource& source_;
    std::vector<bool> seen_;
    std::vector<int> order_;
    PlacedNodes placed_;
};

std::array<V3d, 3> axesOf(const M44d& m) {
    return {V3d(m[0][0], m[0][1], m[0][2]), V3d(m[1][0], m[1][1], m[1][2]),
            V3d(m[2][0], m[2][1], m[2][2])};
}

/// The unit vector perpendicular to three vectors in a plane; empty when they are on a line,
/// up to rounding. `longest` is the length of the longest.
std::optional<V3d> normalOf(const std::array<V3d, 3>& v, double longest) {
    std::array<V3d, 3> crosses = {v[0].cross(v[1]), v[1].cross(v[2]), v[2].cross(v[0])};
    const V3d& largest =
        *std::max_element(crosses.begin(), crosses.end(),
                          [](const V3d& a, const V3d& b) { return a.length2() < b.length2(); });
    if (!(largest.length() > kFlat * longest * longest)) return std::nullopt;
    return largest.normalized();
}

V3d perpendicularTo(const V3d& z) {
    const V3d helper = std::abs(z.x) < 0.9 ? V3d(1, 0, 0) : V3d(0, 1, 0);
    return (helper - z * helper.dot(z)).normalized();
}

}  // namespace

PlacedNodes placeNodes(const GltfSource& source) {
    return Walker(source).place();
}

M44d rigid(const M44d& m) {
    const auto [a, b, c] = axesOf(m);
    const V3d towards = c.length2() > 0 ? c : a.cross(b);
    const V3d z = towards.length2() > 0 ? towards.normalized() : V3d(0, 0, 1);
    const V3d right = b.cross(z);
    const V3d x = right.length2() > 0 ? right.normalized() : perpendicularTo(z);
    const V3d y = z.cross(x);
    return M44d(x.x, x.y, x.z, 0, y.x, y.y, y.z, 0, z.x, z.y, z.z, 0, m[3][0], m[3][1], m[3][2], 1);
}

std::optional<M44d> unflattened(const M44d& m) {
    const std::array<V3d, 3> axes = axesOf(m);
    const double longest = std::max({axes[0].length(), axes[1].length(), axes[2].length()});
    const double volume = axes[0].dot(axes[1].cross(axes[2]));
    if (std::abs(volume) > kFlat * longest * longest * longest) return m;
    const auto out = normalOf(axes, longest);
    const auto squeezed = normalOf(axesOf(m.transposed()), longest);
    if (!out || !squeezed) return std::nullopt;
    const auto thickened = [&](double thickness) {
        M44d thick = m;
        for (int r = 0; r < 3; ++r) {
            for (int c = 0; c < 3; ++c)
                thick[r][c] += thickness * (*squeezed)[r] * (*out)[c];
        }
        return thick;
    };
    const M44d thick = thickened(kThickness * longest);
    return thick.determinant() > 0 ? thick : thickened(-kThickness * longest);
}

}  // namespace tavora::studio
