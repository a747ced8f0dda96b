#include "tests/render/test_scene.h"

#include <cmath>
#include <numbers>

#include "studio/scene/lighting/soft_light.h"
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

const Object& TestScene::addObject(std::shared_ptr<const Mesh> mesh, int surface,
                                   const Imath::M44d& objectToWorld) {
    auto object = std::make_unique<Object>();
    object->name = "object " + std::to_string(scene.objects.size());
    object->objectToWorld = objectToWorld;
    object->mirrored = objectToWorld.determinant() < 0;
    object->parts.push_back({std::move(mesh), surface, 0});
    scene.objects.push_back(std::move(object));
    return *scene.objects.back();
}

const Object& TestScene::addQuad(const Imath::V3d& centre, double halfSide, int surface) {
    return addObject(quadMesh(halfSide), surface, Imath::M44d().translate(centre));
}

Light& TestScene::addLight(LightKind kind, const Imath::V3d& color) {
    Light& light = *made_.emplace_back(std::make_unique<Light>());
    light.name = "light " + std::to_string(made_.size());
    light.kind = kind;
    rig.lights.push_back({&light, color, 1});
    return light;
}

void TestScene::addSun(const Imath::V3d& direction, const Imath::V3d& color) {
    addLight(LightKind::Directional, color).direction = direction.normalized();
}

void TestScene::soften(double radius, double angle) {
    for (LitLight& light : rig.lights) {
        light.points = light.light->kind == LightKind::Directional
                           ? softSunPoints(*light.light, angle)
                           : softLampPoints(*light.light, radius);
    }
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

std::shared_ptr<Mesh> sphereMesh(double radius, int segments, int rings) {
    auto mesh = std::make_shared<Mesh>();
    mesh->smooth = true;
    for (int ring = 0; ring <= rings; ++ring) {
        for (int segment = 0; segment <= segments; ++segment) {
            const double theta = std::numbers::pi * ring / rings;
            const double phi = 2 * std::numbers::pi * segment / segments;
            const Imath::V3d normal(std::sin(theta) * std::sin(phi), std::cos(theta),
                                    std::sin(theta) * std::cos(phi));
            mesh->positions.emplace_back(normal * radius);
            mesh->normals.emplace_back(normal);
        }
    }
    const auto at = [&](int ring, int segment) {
        return static_cast<std::uint32_t>(ring * (segments + 1) + segment);
    };
    for (int ring = 0; ring < rings; ++ring) {
        for (int i = 0; i < segments; ++i) {
            if (ring > 0) {
                mesh->triangles.push_back({at(ring, i), at(ring + 1, i), at(ring, i + 1)});
            }
            if (ring + 1 < rings) {
                mesh->triangles.push_back({at(ring, i + 1), at(ring + 1, i), at(ring + 1, i + 1)});
            }
        }
    }
    return mesh;
}

std::shared_ptr<Mesh> torusMesh(double major, double minor, int segments, int sides) {
    auto mesh = std::make_shared<Mesh>();
    mesh->smooth = true;
    for (int segment = 0; segment < segments; ++segment) {
        for (int side = 0; side < sides; ++side) {
            const double around = 2 * std::numbers::pi * segment / segments;
            const double tube = 2 * std::numbers::pi * side / sides;
            const Imath::V3d out(0, std::cos(around), std::sin(around));
            const Imath::V3d normal = out * std::cos(tube) + Imath::V3d(std::sin(tube), 0, 0);
            mesh->positions.emplace_back(out * major + normal * minor);
            mesh->normals.emplace_back(normal);
        }
    }
    const auto at = [&](int segment, int side) {
        return static_cast<std::uint32_t>(segment % segments * sides + side % sides);
    };
    for (int i = 0; i < segments; ++i) {
        for (int j = 0; j < sides; ++j) {
            mesh->triangles.push_back({at(i, j), at(i, j + 1), at(i + 1, j)});
            mesh->triangles.push_back({at(i + 1, j), at(i, j + 1), at(i + 1, j + 1)});
        }
    }
    return mesh;
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

SurfaceShaders shadingFor(const TestScene& test, const StateBlock& block) {
    return SurfaceShaders(test.scene.surfaces.size(), SurfaceShader{.block = block});
}

Picture renderPlain(const TestScene& test, const Camera& camera, const RenderOptions& options,
                    RenderStats* stats) {
    Renderer renderer(test.scene);
    const SurfaceShaders plain(test.scene.surfaces.size());
    return renderer.render(camera, test.rig, plain, {}, options, {}, stats);
}

Picture renderWith(const TestScene& test, const Camera& camera, const RenderOptions& options,
                   const char* module, const StateBlock& block, RenderStats* stats) {
    Renderer renderer(test.scene);
    return renderer.render(camera, test.rig, shadingFor(test, block), module, options, {}, stats);
}

Imath::V3d displayed(const Picture& picture, int x, int y) {
    const float* rgba = picture.pixel(x, y);
    const double alpha = static_cast<double>(rgba[3]);
    if (alpha == 0) return Imath::V3d(0);
    return {toEncoded(static_cast<double>(rgba[0]) / alpha),
            toEncoded(static_cast<double>(rgba[1]) / alpha),
            toEncoded(static_cast<double>(rgba[2]) / alpha)};
}

double meanError(const Picture& a, const Picture& b) {
    double sum = 0;
    for (int y = 0; y < a.height; ++y) {
        for (int x = 0; x < a.width; ++x)
            sum += (displayed(a, x, y) - displayed(b, x, y)).length();
    }
    return sum / (a.width * a.height);
}

}  // namespace tavora::studio
