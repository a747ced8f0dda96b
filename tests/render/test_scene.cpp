#include "tests/render/test_scene.h"

#include <cmath>
#include <numbers>

#include "studio/scene/lighting/area_light.h"
#include "studio/util/color.h"

namespace tavora::studio {

Surface& TestScene::addSurface() {
    Surface& surface = scene.surfaces.emplace_back();
    surface.name = "surface " + std::to_string(scene.surfaces.size());
    return surface;
}

int TestScene::addImage(int width, int height, std::vector<std::uint8_t> rgba) {
    scene.images.push_back({"image", width, height, std::move(rgba)});
    return static_cast<int>(scene.images.size()) - 1;
}

Object& TestScene::addObject(std::shared_ptr<const Mesh> mesh, int surface,
                             const Imath::M44d& objectToWorld) {
    auto object = std::make_unique<Object>();
    object->name = "object " + std::to_string(scene.objects.size());
    object->objectToWorld = objectToWorld;
    object->mirrored = objectToWorld.determinant() < 0;
    object->parts.push_back({std::move(mesh), surface, 0});
    Object& added = *object;
    scene.objects.push_back(std::move(object));
    return added;
}

Object& TestScene::addQuad(const Imath::V3d& centre, double halfSide, int surface) {
    return addObject(quadMesh(halfSide), surface, Imath::M44d().translate(centre));
}

Light& TestScene::addLight(LightKind kind, const Imath::V3d& color) {
    Light& light = *made_.emplace_back(std::make_unique<Light>());
    light.name = "light " + std::to_string(made_.size());
    light.kind = kind;
    lightSet.lights.push_back({&light, color, 1});
    return light;
}

void TestScene::addSun(const Imath::V3d& direction, const Imath::V3d& color) {
    addLight(LightKind::Directional, color).direction = direction.normalized();
}

void TestScene::soften(double radius, double angle) {
    for (ResolvedLight& light : lightSet.lights) {
        light.points = light.light->kind == LightKind::Directional
                           ? directionalLightPoints(*light.light, angle)
                           : punctualLightPoints(*light.light, radius);
    }
}

void drawOn(Surface& surface, int image) {
    TextureUse& use = surface.baseColorTexture.emplace();
    use.image = image;
    use.magnify = use.minify = Filter::Nearest;
    use.mipmaps = false;
}

std::shared_ptr<Mesh> quadMesh(double halfSide) {
    const auto h = static_cast<float>(halfSide);
    auto mesh = std::make_shared<Mesh>();
    mesh->positions = {{-h, -h, 0}, {h, -h, 0}, {h, h, 0}, {-h, h, 0}};
    mesh->normals.assign(4, {0, 0, 1});
    mesh->uvs[0] = {{0, 1}, {1, 1}, {1, 0}, {0, 0}};
    mesh->triangles = {{0, 1, 2}, {0, 2, 3}};
    return mesh;
}

namespace {

/// A smooth mesh of a grid of cells; `at` gives a vertex and its normal, by two angles
/// once around. Where rows of vertices begin and end `inPoles`, cells are triangles.
template <class At>
std::shared_ptr<Mesh> roundMesh(int rows, int columns, bool inPoles, const At& at) {
    auto mesh = std::make_shared<Mesh>();
    mesh->smooth = true;
    for (int row = 0; row <= rows; ++row) {
        for (int column = 0; column <= columns; ++column) {
            const auto [position, normal] =
                at(2 * std::numbers::pi * row / rows, 2 * std::numbers::pi * column / columns);
            mesh->positions.emplace_back(position);
            mesh->normals.emplace_back(normal);
        }
    }
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            const auto first = static_cast<std::uint32_t>(row * (columns + 1) + column);
            const std::uint32_t below = first + static_cast<std::uint32_t>(columns) + 1;
            if (!inPoles || row > 0) mesh->triangles.push_back({first, below, first + 1});
            if (!inPoles || row + 1 < rows)
                mesh->triangles.push_back({first + 1, below, below + 1});
        }
    }
    return mesh;
}

/// Around the x axis.
Imath::V3d turned(double angle) {
    return {0, std::cos(angle), std::sin(angle)};
}

}  // namespace

std::shared_ptr<Mesh> sphereMesh(double radius, int segments, int rings) {
    return roundMesh(rings, segments, true, [&](double twice, double around) {
        const Imath::V3d side(std::sin(around), 0, std::cos(around));
        const Imath::V3d normal =
            side * std::sin(twice / 2) + Imath::V3d(0, std::cos(twice / 2), 0);
        return std::pair(normal * radius, normal);
    });
}

std::shared_ptr<Mesh> torusMesh(double major, double minor, int segments, int sides) {
    return roundMesh(sides, segments, false, [&](double tube, double around) {
        const Imath::V3d normal =
            turned(around) * std::cos(tube) + Imath::V3d(std::sin(tube), 0, 0);
        return std::pair(turned(around) * major + normal * minor, normal);
    });
}

Camera frontCamera(const Imath::V3d& eye, double halfHeight) {
    Camera camera;
    camera.orthographic = true;
    camera.halfHeight = halfHeight;
    camera.cameraToWorld = Imath::M44d().translate(eye);
    return camera;
}

RenderOptions squareOptions(int size) {
    RenderOptions options;
    options.width = options.height = size;
    options.samples = options.threads = 1;
    options.background = Imath::V3d(0);
    return options;
}

Picture renderWith(const TestScene& test, const Camera& camera, const RenderOptions& options,
                   const char* module, const std::optional<StateBlock>& block, RenderStats* stats) {
    std::optional<SurfaceShader> shader;
    if (block) shader = SurfaceShader{.block = *block};
    const SurfaceShaders shading(test.scene.surfaces.size(), shader);
    return Renderer(test.scene).render(camera, test.lightSet, shading, module, options, {}, stats);
}

Picture renderPlain(const TestScene& test, const Camera& camera, const RenderOptions& options,
                    RenderStats* stats) {
    return renderWith(test, camera, options, "", {}, stats);
}

Imath::V3d displayed(const Picture& picture, int x, int y) {
    const float* rgba = picture.pixel(x, y);
    const double alpha = static_cast<double>(rgba[3]);
    if (alpha == 0) return Imath::V3d(0);
    return {toEncoded(static_cast<double>(rgba[0]) / alpha),
            toEncoded(static_cast<double>(rgba[1]) / alpha),
            toEncoded(static_cast<double>(rgba[2]) / alpha)};
}

}  // namespace tavora::studio
