#include "studio/scene/framing/default_view.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>

#include "studio/util/deterministic_math.h"

namespace tavora::studio {
namespace {

using Imath::V3d;
using Scenes = std::span<const Scene* const>;

constexpr double kFov = 0.6;            // radians, the longer lens of a portrait
constexpr double kWidest = 16.0 / 9;    // width / height from which on the lens grows no wider
constexpr double kRound = 0.523598776;  // radians to the side of the front: 30 degrees
constexpr double kOver = 0.34906585;    // radians over the horizon: 20 degrees
constexpr double kEdgeOn = 0.15;        // share of the surfaces' area that a picture shows
constexpr std::size_t kTrianglesToJudgeBy = 4096;  // of a mesh, for that
constexpr double kNearest = 0.01;                  // of the scene's size: the eye no nearer to it

/// A camera frame from its axes; `back` points from the target to the camera.
struct Axes {
    V3d right;
    V3d up;
    V3d back;
};

/// From the front, `round` radians to the right, and from above.
Axes threeQuarterView(double round) {
    const double level = deterministic::cos(kOver);
    Axes axes;
    axes.back = V3d(deterministic::sin(round) * level, deterministic::sin(kOver),
                    deterministic::cos(round) * level);
    axes.right = V3d(0, 1, 0).cross(axes.back).normalized();
    axes.up = axes.back.cross(axes.right);
    return axes;
}

Imath::M44d frame(const Axes& a, const V3d& origin) {
    return Imath::M44d(a.right.x, a.right.y, a.right.z, 0, a.up.x, a.up.y, a.up.z, 0, a.back.x,
                       a.back.y, a.back.z, 0, origin.x, origin.y, origin.z, 1);
}

constexpr double kNone = -std::numeric_limits<double>::infinity();

/// A point as one side of the frustum sees it: how far out and how near.
struct Outmost {
    double reach = kNone;  ///< out + slope * near
    double out = 0;
    double near = 0;
};

/// Two opposite sides of a view frustum. Each is a plane that moves away from the
/// axis by `slope` for each unit of distance from the eye. Those of the
/// scene's points that reach farthest past the planes decide where the eye is:
/// from a distance of (reach + reach) / (2 * slope) both planes touch the scene.
class Sides {
  public:
    explicit Sides(double slope) : slope_(slope) {}

    void include(double out, double near) {
        include(positive_, out, near);
        include(negative_, -out, near);
    }

    /// Whether including the point would change anything.
    bool isReachedBy(double out, double near) const {
        return out + slope_ * near > positive_.reach || -out + slope_ * near > negative_.reach;
    }

    /// Of the nearest eye from which all is between the planes.
    double distance() const { return (positive_.reach + negative_.reach) / (2 * slope_); }

    /// Where the eye is across: in the middle of what it sees.
    double middle() const { return (positive_.reach - negative_.reach) / 2; }

    double slope() const { return slope_; }

    /// The slope of planes that touch the same two points from an eye at `distance`.
    double slopeFrom(double distance) const {
        const double extent = positive_.out + negative_.out;
        return extent > 0 ? extent / (2 * distance - positive_.near - negative_.near) : 0;
    }

  private:
    void include(Outmost& side, double out, double near) const {
        const double reach = out + slope_ * near;
        if (reach > side.reach) side = {reach, out, near};
    }

    double slope_;
    Outmost positive_;
    Outmost negative_;
};

/// By a transform without perspective.
V3d placed(const Imath::V3f& point, const Imath::M44d& to) {
    V3d place;
    to.multDirMatrix(V3d(point), place);
    return place + V3d(to[3][0], to[3][1], to[3][2]);
}

/// Calls visit(mesh, transform) for each mesh; the transform takes its positions
/// into the world and then through `next`.
template <typename Visit>
void eachMesh(Scenes scenes, const Imath::M44d& next, const Visit& visit) {
    for (const Scene* scene : scenes) {
        for (const auto& object : scene->objects) {
            for (const Part& part : object->parts)
                visit(*part.mesh, object->objectToWorld * next);
        }
    }
}

/// Of all surfaces' area, the share that is left in a picture from far off.
class SeenArea {
  public:
    explicit SeenArea(const Axes& axes) : back_(axes.back) {}

    void include(const V3d& areaVector) {
        seen_ += std::abs(areaVector.dot(back_));
        whole_ += areaVector.length();
    }

    double share() const { return whole_ > 0 ? seen_ / whole_ : 1; }

  private:
    V3d back_;
    double seen_ = 0;
    double whole_ = 0;
};

/// From the right; from the left if that is where a flat scene is not edge-on.
Axes viewOf(Scenes scenes) {
    const Axes right = threeQuarterView(kRound);
    const Axes left = threeQuarterView(-kRound);
    SeenArea fromRight(right);
    SeenArea fromLeft(left);
    eachMesh(scenes, {}, [&](const Mesh& mesh, const Imath::M44d& toWorld) {
        const std::size_t step = mesh.triangles.size() / kTrianglesToJudgeBy + 1;
        for (std::size_t i = 0; i < mesh.triangles.size(); i += step) {
            const auto& [a, b, c] = mesh.triangles[i];
            const V3d corner = placed(mesh.positions[a], toWorld);
            const V3d area = (placed(mesh.positions[b], toWorld) - corner)
                                 .cross(placed(mesh.positions[c], toWorld) - corner);
            fromRight.include(area);
            fromLeft.include(area);
        }
    });
    const bool edgeOn = fromRight.share() < kEdgeOn && fromLeft.share() > 2 * fromRight.share();
    return edgeOn ? left : right;
}

/// The boxes of meshes in their own space, by mesh.
using Boxes = std::map<const Mesh*, Imath::Box3f>;

Boxes boxesOf(Scenes scenes) {
    Boxes boxes;
    eachMesh(scenes, {}, [&](const Mesh& mesh, const Imath::M44d&) {
        const auto [box, isNew] = boxes.try_emplace(&mesh);
        if (!isNew) return;
        for (const Imath::V3f& position : mesh.positions)
            box->second.extendBy(position);
    });
    return boxes;
}

V3d cornerOf(const Imath::Box3f& box, unsigned i, const Imath::M44d& to) {
    return placed({(i & 1U) != 0 ? box.max.x : box.min.x, (i & 2U) != 0 ? box.max.y : box.min.y,
                   (i & 4U) != 0 ? box.max.z : box.min.z},
                  to);
}

/// Calls visit(corner) for all triangles' corners in camera axes with the eye in the
/// world's origin; for those of a unit cube where there are no triangles. Leaves out the
/// meshes in whose boxes no corner mayCount(), so that of many only those at the rim of
/// the scene cost time.
template <typename MayCount, typename Visit>
void eachCorner(Scenes scenes, const Axes& axes, const Boxes& boxes, const MayCount& mayCount,
                const Visit& visit) {
    const Imath::M44d toCamera = frame(axes, V3d(0)).transposed();
    bool none = true;
    eachMesh(scenes, toCamera, [&](const Mesh& mesh, const Imath::M44d& to) {
        none = none && mesh.triangles.empty();
        const Imath::Box3f& box = boxes.at(&mesh);
        bool counts = false;
        for (unsigned i = 0; i < 8 && !counts; ++i)
            counts = mayCount(cornerOf(box, i, to));
        if (!counts) return;
        for (const auto& triangle : mesh.triangles) {
            for (const std::uint32_t i : triangle)
                visit(placed(mesh.positions[i], to));
        }
    });
    for (unsigned i = 0; none && i < 8; ++i) {
        visit(V3d((i & 1U) ? 0.5 : -0.5, (i & 2U) ? 0.5 : -0.5, (i & 4U) ? 0.5 : -0.5) * toCamera);
    }
}

/// Widens a scene that is seen as a point or a line.
double roomFor(const Imath::Box3d& seen) {
    const double size = seen.size().length();
    return size > 0 ? kNearest * size : 1.0;
}

bool isNear(double next, double last) {
    return std::abs(next - last) <= 1e-9 * last;
}

/// The eye from which the scene's picture is in the middle both ways and reaches
/// to the margin one way, in camera axes. The sides that need more distance
/// decide how far off it is; the others are drawn in until both touch the scene.
/// From planes that are too far out, Newton's method goes past the place once, then
/// up to it: what it solves is convex, made of straight pieces, and ends exactly.
V3d framingEye(Scenes scenes, const Axes& axes, double slopeAcross, double slopeUp) {
    constexpr int kMostRounds = 16;
    Sides across(slopeAcross);
    Sides up(slopeUp);
    Imath::Box3d seen;
    const Boxes boxes = boxesOf(scenes);
    const auto isReachedBy = [&](const V3d& p) {
        return across.isReachedBy(p.x, p.z) || up.isReachedBy(p.y, p.z);
    };
    eachCorner(
        scenes, axes, boxes, [&](const V3d& p) { return !seen.intersects(p) || isReachedBy(p); },
        [&](const V3d& p) {
            across.include(p.x, p.z);
            up.include(p.y, p.z);
            seen.extendBy(p);
        });
    const double distance =
        std::max({across.distance(), up.distance(), seen.max.z + roomFor(seen)});
    for (int round = 0; round < kMostRounds; ++round) {
        const double nextAcross = across.slopeFrom(distance);
        const double nextUp = up.slopeFrom(distance);
        if (isNear(nextAcross, across.slope()) && isNear(nextUp, up.slope())) break;
        across = Sides(nextAcross);
        up = Sides(nextUp);
        eachCorner(scenes, axes, boxes, isReachedBy, [&](const V3d& p) {
            across.include(p.x, p.z);
            up.include(p.y, p.z);
        });
    }
    return {across.middle(), up.middle(), distance};
}

}  // namespace

Camera framingCameraOfFilm(Scenes scenes, double aspect) {
    const Axes axes = viewOf(scenes);
    const double fov = kFov * std::min(1.0, kWidest / aspect);
    const double slope = deterministic::tan(fov / 2);
    const double kept = 1 - 2 * kFramingMargin;
    const V3d eye = framingEye(scenes, axes, slope * aspect * kept, slope * kept);
    Camera camera;
    camera.name = "Framing";
    camera.verticalFov = fov;
    camera.cameraToWorld = frame(axes, axes.right * eye.x + axes.up * eye.y + axes.back * eye.z);
    return camera;
}

Camera framingCamera(const Scene& scene, double aspect) {
    const Scene* const scenes[] = {&scene};
    return framingCameraOfFilm(scenes, aspect);
}

Scene shapeOf(const Scene& scene) {
    Scene shape;
    for (const auto& object : scene.objects) {
        auto copy = std::make_shared<Object>(*object);
        for (Part& part : copy->parts) {
            if (part.mesh->revision == 0) continue;
            auto mesh = std::make_shared<Mesh>();
            mesh->positions = part.mesh->positions;
            mesh->triangles = part.mesh->triangles;
            part.mesh = std::move(mesh);
        }
        shape.objects.push_back(std::move(copy));
    }
    return shape;
}

Light keyLight(const Camera& camera) {
    V3d right;
    V3d up;
    V3d back;
    camera.cameraToWorld.multDirMatrix(V3d(1, 0, 0), right);
    camera.cameraToWorld.multDirMatrix(V3d(0, 1, 0), up);
    camera.cameraToWorld.multDirMatrix(V3d(0, 0, 1), back);
    Light light;
    light.name = kKeyLightName;
    light.direction = -(back * 1.0 - right * 0.8 + up * 0.9).normalized();
    return light;
}

}  // namespace tavora::studio
