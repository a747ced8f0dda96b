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

constexpr double kFov = 0.6;               // radians, vertical; like the longer lens of a portrait
constexpr double kMaxAspect = 16.0 / 9;    // width / height above which the lens gets longer
constexpr double kAzimuth = 0.523598776;   // radians to the side of the front: 30 degrees
constexpr double kElevation = 0.34906585;  // radians over the horizon: 20 degrees
constexpr double kEdgeOn = 0.15;           // fraction of the surfaces' area that is visible
constexpr std::size_t kMaxTriangles = 4096;  // that are visited of a mesh to compute it
constexpr double kMinDistance = 0.01;        // of the eye to the scene, as a fraction of its size

/// A camera frame from its axes; `back` points from the target to the camera.
struct Axes {
    V3d right;
    V3d up;
    V3d back;
};

/// A camera in front of the scene, `azimuth` radians to the right and kElevation up.
Axes threeQuarterView(double azimuth) {
    const double level = deterministic::cos(kElevation);
    Axes axes;
    axes.back = V3d(deterministic::sin(azimuth) * level, deterministic::sin(kElevation),
                    deterministic::cos(azimuth) * level);
    axes.right = V3d(0, 1, 0).cross(axes.back).normalized();
    axes.up = axes.back.cross(axes.right);
    return axes;
}

Imath::M44d frame(const Axes& a, const V3d& origin) {
    return Imath::M44d(a.right.x, a.right.y, a.right.z, 0, a.up.x, a.up.y, a.up.z, 0, a.back.x,
                       a.back.y, a.back.z, 0, origin.x, origin.y, origin.z, 1);
}

constexpr double kUnset = -std::numeric_limits<double>::infinity();

/// The point that lies farthest out of one side of the frustum: its distance from the axis
/// on that side, and its coordinate along the axis, growing towards the camera.
struct Extreme {
    double reach = kUnset;  ///< out + slope * near
    double out = 0;
    double near = 0;
};

/// Two opposite sides of a view frustum. Each is a plane that moves away from the
/// axis by `slope` for each unit of distance from the eye. The scene's points that lie
/// farthest out decide where the eye is: from a distance of
/// (positive reach + negative reach) / (2 * slope) both planes touch the scene.
class Sides {
  public:
    explicit Sides(double slope) : slope_(slope) {}

    void include(double out, double near) {
        include(positive_, out, near);
        include(negative_, -out, near);
    }

    /// Whether the point lies farther out than all that were included.
    bool isExceededBy(double out, double near) const {
        return out + slope_ * near > positive_.reach || -out + slope_ * near > negative_.reach;
    }

    /// How far away the nearest eye is that has all points between the planes.
    double distance() const { return (positive_.reach + negative_.reach) / (2 * slope_); }

    /// The position of that eye across the axis.
    double middle() const { return (positive_.reach - negative_.reach) / 2; }

    double slope() const { return slope_; }

    /// The slope of planes that touch the same two points from an eye at `distance`.
    double slopeFrom(double distance) const {
        const double extent = positive_.out + negative_.out;
        return extent > 0 ? extent / (2 * distance - positive_.near - negative_.near) : 0;
    }

  private:
    void include(Extreme& extreme, double out, double near) const {
        const double reach = out + slope_ * near;
        if (reach > extreme.reach) extreme = {reach, out, near};
    }

    double slope_;
    Extreme positive_;
    Extreme negative_;
};

/// Transforms a point by a matrix without perspective.
V3d transformed(const Imath::V3f& point, const Imath::M44d& to) {
    V3d direction;
    to.multDirMatrix(V3d(point), direction);
    return direction + V3d(to[3][0], to[3][1], to[3][2]);
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

/// The projected area of all triangles, as a fraction of their area.
class ProjectedArea {
  public:
    explicit ProjectedArea(const Axes& axes) : back_(axes.back) {}

    void include(const V3d& areaVector) {
        projected_ += std::abs(areaVector.dot(back_));
        total_ += areaVector.length();
    }

    double fraction() const { return total_ > 0 ? projected_ / total_ : 1; }

  private:
    V3d back_;
    double projected_ = 0;
    double total_ = 0;
};

/// The view from the right, or from the left for a flat scene that is edge-on from the
/// right only.
Axes viewOf(Scenes scenes) {
    const Axes right = threeQuarterView(kAzimuth);
    const Axes left = threeQuarterView(-kAzimuth);
    ProjectedArea fromRight(right);
    ProjectedArea fromLeft(left);
    eachMesh(scenes, {}, [&](const Mesh& mesh, const Imath::M44d& toWorld) {
        const std::size_t step = mesh.triangles.size() / kMaxTriangles + 1;
        for (std::size_t i = 0; i < mesh.triangles.size(); i += step) {
            const auto& [a, b, c] = mesh.triangles[i];
            const V3d corner = transformed(mesh.positions[a], toWorld);
            const V3d area = (transformed(mesh.positions[b], toWorld) - corner)
                                 .cross(transformed(mesh.positions[c], toWorld) - corner);
            fromRight.include(area);
            fromLeft.include(area);
        }
    });
    const bool edgeOn =
        fromRight.fraction() < kEdgeOn && fromLeft.fraction() > 2 * fromRight.fraction();
    return edgeOn ? left : right;
}

/// The bounding box of each mesh in object space.
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
    return transformed(
        {(i & 1U) != 0 ? box.max.x : box.min.x, (i & 2U) != 0 ? box.max.y : box.min.y,
         (i & 4U) != 0 ? box.max.z : box.min.z},
        to);
}

/// Calls visit(corner) for the corners of all triangles, or of a unit cube when there are no
/// triangles. Corners are in camera axes, with the eye at the world's origin. Skips a mesh
/// when mayCount() is false for all corners of its bounding box, so that of many meshes
/// only those at the border of the scene cost time.
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
                visit(transformed(mesh.positions[i], to));
        }
    });
    for (unsigned i = 0; none && i < 8; ++i) {
        visit(V3d((i & 1U) ? 0.5 : -0.5, (i & 2U) ? 0.5 : -0.5, (i & 4U) ? 0.5 : -0.5) * toCamera);
    }
}

/// The least distance between the eye and the scene, for a scene that looks like a point or
/// a line and would allow any distance.
double minDistanceTo(const Imath::Box3d& box) {
    const double size = box.size().length();
    return size > 0 ? kMinDistance * size : 1.0;
}

bool isNear(double next, double last) {
    return std::abs(next - last) <= 1e-9 * last;
}

/// The eye position, in camera axes, from which the scene's picture is centred in both
/// directions and extends to the margin in the tighter one. The pair of sides that needs
/// more distance decides the distance; the slope of the other pair is reduced until both of
/// its planes touch the scene. That slope is found by Newton's method: the function is
/// convex and piecewise linear, so after at most one step past the solution the method
/// approaches it from one side and ends exactly on it.
V3d framingEye(Scenes scenes, const Axes& axes, double slopeAcross, double slopeUp) {
    constexpr int kMaxIterations = 16;
    Sides across(slopeAcross);
    Sides up(slopeUp);
    Imath::Box3d box;
    const Boxes boxes = boxesOf(scenes);
    const auto isOutside = [&](const V3d& p) {
        return across.isExceededBy(p.x, p.z) || up.isExceededBy(p.y, p.z);
    };
    eachCorner(
        scenes, axes, boxes, [&](const V3d& p) { return !box.intersects(p) || isOutside(p); },
        [&](const V3d& p) {
            across.include(p.x, p.z);
            up.include(p.y, p.z);
            box.extendBy(p);
        });
    const double distance =
        std::max({across.distance(), up.distance(), box.max.z + minDistanceTo(box)});
    for (int iteration = 0; iteration < kMaxIterations; ++iteration) {
        const double nextAcross = across.slopeFrom(distance);
        const double nextUp = up.slopeFrom(distance);
        if (isNear(nextAcross, across.slope()) && isNear(nextUp, up.slope())) break;
        across = Sides(nextAcross);
        up = Sides(nextUp);
        eachCorner(scenes, axes, boxes, isOutside, [&](const V3d& p) {
            across.include(p.x, p.z);
            up.include(p.y, p.z);
        });
    }
    return {across.middle(), up.middle(), distance};
}

}  // namespace

Camera framingCameraOfFilm(Scenes scenes, double aspect) {
    const Axes axes = viewOf(scenes);
    const double fov = kFov * std::min(1.0, kMaxAspect / aspect);
    const double slope = deterministic::tan(fov / 2);
    const double inner = 1 - 2 * kFramingMargin;
    const V3d eye = framingEye(scenes, axes, slope * aspect * inner, slope * inner);
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

Scene geometryOf(const Scene& scene) {
    Scene geometry;
    for (const auto& object : scene.objects) {
        auto copy = std::make_shared<Object>(*object);
        for (Part& part : copy->parts) {
            if (part.mesh->revision == 0) continue;
            auto mesh = std::make_shared<Mesh>();
            mesh->positions = part.mesh->positions;
            mesh->triangles = part.mesh->triangles;
            part.mesh = std::move(mesh);
        }
        geometry.objects.push_back(std::move(copy));
    }
    return geometry;
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
