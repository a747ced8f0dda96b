#pragma once

#include <ImathMatrix.h>
#include <ImathVec.h>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include <nlohmann/json.hpp>

#include "studio/render/final/renderer.h"
#include "studio/scene/lighting/light_set.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// Scenes of a few triangles, built in memory. Surfaces first: the mesh
/// functions refer to them by number.
struct TestScene {
    Scene scene;
    LightSet lightSet;

    /// A white, opaque, single-sided, rough surface; change it as needed.
    Surface& addSurface();
    int addImage(int width, int height, std::vector<std::uint8_t> rgba);

    Object& addObject(std::shared_ptr<const Mesh> mesh, int surface,
                      const Imath::M44d& objectToWorld = {});
    /// A square of that half side around `centre`, facing +z, UVs from the upper
    /// left corner.
    Object& addQuad(const Imath::V3d& centre, double halfSide, int surface);

    Light& addLight(LightKind kind, const Imath::V3d& color = Imath::V3d(1));
    void addSun(const Imath::V3d& direction, const Imath::V3d& color = Imath::V3d(1));
    /// Gives all lights a size as they stand: metres, or radians in the sky.
    void soften(double radius, double angle);

  private:
    std::vector<std::unique_ptr<Light>> made_;
};

/// Lays an image over the surface, each texel a square.
void drawOn(Surface& surface, int image);

std::shared_ptr<Mesh> quadMesh(double halfSide);
/// A smooth sphere around the origin, normals as its surface's.
std::shared_ptr<Mesh> sphereMesh(double radius, int segments, int rings);
/// A smooth ring around the x axis, of a tube of radius `minor`.
std::shared_ptr<Mesh> torusMesh(double major, double minor, int segments, int sides);

/// Looks along -z from `eye`; the picture is `halfHeight` x 2 high.
Camera frontCamera(const Imath::V3d& eye, double halfHeight);

/// Options of a square picture, one thread, one sample, black background.
RenderOptions squareOptions(int size);

/// Renders with one shader on all surfaces, if there are settings for it.
Picture renderWith(const TestScene& test, const Camera& camera, const RenderOptions& options,
                   const char* module, const std::optional<StateBlock>& block,
                   RenderStats* stats = nullptr);
Picture renderPlain(const TestScene& test, const Camera& camera, const RenderOptions& options,
                    RenderStats* stats = nullptr);

/// A pixel's colour as a display shows it (alpha not premultiplied).
Imath::V3d displayed(const Picture& picture, int x, int y);

/// The surfaces of the Room.
enum Place { kBall, kPane, kLeaf, kWall, kClear, kSign };

/// Of everything that a ray may meet something: a seamed ball, a clear pane, one that
/// is wholly clear, a leaf with holes and an unlit sign before a painted, bumpy wall,
/// a part of which is there twice; beyond the wall, nothing.
struct Room : TestScene {
    Room();
    /// A sun, a lamp and a spot of that size in metres or radians, and dim light all over.
    void addLights(double radius, double angle);
};

/// Flat shapes of many colours on one another before a wall, large and small, pointed,
/// some of them thin; in front of hard lights, or unlit.
struct Shapes : TestScene {
    explicit Shapes(bool unlit);
};

/// A quad with the tangents that its UVs make.
std::shared_ptr<Mesh> tangentQuadMesh(double halfSide);

/// Sees all of the Room, and nothing around it.
Camera roomCamera();

/// The module's defaults with some settings changed.
StateBlock look(const nlohmann::ordered_json& changes = nlohmann::ordered_json::object());

/// One quad of half side 1 at the origin that faces +z, and its surface.
struct QuadScene : TestScene {
    QuadScene();
    Surface& surface() { return scene.surfaces[0]; }
};

/// What one ray shows, straight down from `eye`; with the probe module's shader on all
/// surfaces, if there are settings for it.
Picture onePixel(const TestScene& test, const std::optional<StateBlock>& probe = {},
                 RenderStats* stats = nullptr, const Imath::V3d& eye = {0, 0, 5});
/// The same as displayed.
Imath::V3d colorOf(const TestScene& test, const std::optional<StateBlock>& probe = {});

/// As a display shows light.
Imath::V3d encoded(const Imath::V3d& linear);
void expectColor(const Imath::V3d& actual, const Imath::V3d& expected);

}  // namespace tavora::studio
