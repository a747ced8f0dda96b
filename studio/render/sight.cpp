#include "studio/render/sight.h"

namespace tavora::studio {
namespace {

/// What shows less than this is not looked for.
constexpr double kInvisible = 1e-4;

/// Surfaces over each other, front to back.
class Layers {
  public:
    explicit Layers(Sight& sight) : sight_(&sight) { sight = {}; }

    void add(const Appearance& surface) {
        sight_->color += surface.color * (through_ * (1 - surface.transparency));
        through_ *= surface.transparency;
        if (through_ < kInvisible) through_ = 0;
    }
    bool hide() const { return through_ == 0; }

    void lieOver(const std::optional<Imath::V3d>& background) {
        if (background) {
            sight_->color += *background * through_;
            through_ = 0;
        }
        sight_->alpha = 1 - through_;
    }

  private:
    Sight* sight_;
    double through_ = 1;
};

FirstSurface firstSurface(const SurfacePoint& point) {
    return {point.facet->mesh, static_cast<float>(point.distance), Imath::V3f(point.smoothNormal)};
}

}  // namespace

Sight seeNothing(const std::optional<Imath::V3d>& background) {
    Sight sight;
    Layers(sight).lieOver(background);
    return sight;
}

Sight see(SampleShader& shader, const Ray& ray, const std::optional<Imath::V3d>& background,
          FirstSurface* first) {
    Sight sight;
    Layers layers(sight);
    Hit hit;
    Appearance surface;
    while (!layers.hide() && shader.shadeNext(ray, hit, hit, surface)) {
        if (first != nullptr) *first = firstSurface(shader.point());
        first = nullptr;
        layers.add(surface);
    }
    layers.lieOver(background);
    return sight;
}

void seeFrom(SampleShader& shader, const Ray& ray, const MetSurface& met, const KnownLights& lights,
             const std::optional<Imath::V3d>& background, bool notesLights, ViewSample& sample) {
    sample.first = firstSurface(met.point);
    const Appearance first = shader.shadeMet(ray, met, lights);
    if (notesLights) sample.lights = shader.lightsMet();
    if (first.transparency == 0) {
        sample.sight = {first.color, 1};
        return;
    }
    Layers layers(sample.sight);
    layers.add(first);
    Hit hit = met.hit;
    for (Appearance surface; !layers.hide() && shader.shadeNext(ray, hit, hit, surface);)
        layers.add(surface);
    layers.lieOver(background);
}

}  // namespace tavora::studio
