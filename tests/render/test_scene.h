#pragma once

#include <ImathMatrix.h>
#include <ImathVec.h>
#include <cstdint>
#include <memory>
#include <vector>

#include "studio/render/renderer.h"
#include "studio/scene/lighting/light_levels.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// Scenes of a few triangles, built in memory. Surfaces first: the mesh
/// functions refer to them by number.
struct TestScene {
    Scene scene;
    LightRig rig;

    /// A white, opaque, single-sided, rough surface; change it as needed.
    Surface& addSurface();
    int addImage(int width, int height, std::vector<std::uint8_t> rgba);

    const Object& addObject(std::shared_ptr<const Mesh> mesh, int surface,
                            const Imath::M44d& objectToWorld = {});
    /// A square of that half side around `centre`, facing +z, UVs from the upper
    /// left corner.
    const Object& addQuad(const Imath::V3d& centre, double halfSide, int surface);

    Light& addLight(LightKind kind, const Imath::V3d& color = Imath::V3d(1));
    void addSun(const Imath::V3d& direction, const Imath::V3d& color = Imath::V3d(1));
    /// Gives all lights a size as they stand: metres, or radians in the sky.
    void soften(double radius, double angle);

  private:
    std::vector<std::unique_ptr<Light>> made_;
};

std::shared_ptr<Mesh> quadMesh(double halfSide);
/// A smooth sphere around the origin, normals as its surface's.
std::shared_ptr<Mesh> sphereMesh(double radius, int segments, int rings);
/// A smooth ring around the x axis, of a tube of radius `minor`.
std::shared_ptr<Mesh> torusMesh(double major, double minor, int segments, int sides);

/// Looks along -z from `eye`; the picture is `halfHeight` x 2 high.
Camera frontCamera(const Imath::V3d& eye, double halfHeight);

/// Options of a square picture, one thread, one sample, black background.
RenderOptions squareOptions(int size);

/// A shader on every surface of the scene.
SurfaceShaders shadingFor(const TestScene& test, const StateBlock& block);

/// Renders without a shader.
Picture renderPlain(const TestScene& test, const Camera& camera, const RenderOptions& options,
                    RenderStats* stats = nullptr);
/// Renders with one shader on all surfaces.
Picture renderWith(const TestScene& test, const Camera& camera, const RenderOptions& options,
                   const char* module, const StateBlock& block, RenderStats* stats = nullptr);

/// A pixel's colour as a display shows it (alpha not premultiplied).
Imath::V3d displayed(const Picture& picture, int x, int y);

/// Mean distance of pictures of the same size, in display values.
double meanError(const Picture& a, const Picture& b);

}  // namespace tavora::studio
