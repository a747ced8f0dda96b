#include "studio/render/sight.h"

#include <utility>

#include "studio/render/display_levels.h"
#include "studio/util/color.h"

namespace tavora::studio {
namespace {

/// What shows less than this is not looked for.
constexpr double kInvisible = 1e-4;

/// Surfaces over each other, front to back, in linear light.
class Layers {
  public:
    explicit Layers(ColorDecoder& decoder) : decoder_(&decoder) {}

    void add(const Appearance& surface) {
        const double share = through_ * (1 - surface.transparency);
        color_ += decoder_->opaque(surface.color).color * share;
        through_ *= surface.transparency;
        if (through_ < kInvisible) through_ = 0;
    }
    bool hide() const { return through_ == 0; }

    Sight sight() const {
        const auto level = [](double linear) {
            return static_cast<std::uint8_t>(byteLevel(linear));
        };
        const auto covered = static_cast<std::uint8_t>(255 - level(through_));
        return {color_, 1 - through_, {level(color_.x), level(color_.y), level(color_.z), covered}};
    }

  private:
    ColorDecoder* decoder_;
    Imath::V3d color_{0, 0, 0};
    double through_ = 1;
};

FirstSurface firstSurface(const SurfacePoint& point) {
    return {point.facet->mesh, static_cast<float>(point.distance), Imath::V3f(point.smoothNormal)};
}

/// Where `ray` meets `nearest` at `hit`.
Sight seeOnwards(SampleShader& shader, ColorDecoder& decoder, const Ray& ray, Hit hit,
                 const Appearance& nearest) {
    if (nearest.transparency == 0) return decoder.opaque(nearest.color);
    Layers layers(decoder);
    layers.add(nearest);
    for (Appearance surface; !layers.hide() && shader.shadeNext(ray, hit, hit, surface);)
        layers.add(surface);
    return layers.sight();
}

}  // namespace

const Sight& ColorDecoder::opaque(const Imath::V3d& color) {
    if (color != last_.from) {
        std::swap(last_, before_);
        if (color != last_.from) {
            const Imath::V3d light(toLinear(color.x), toLinear(color.y), toLinear(color.z));
            last_ = {color, {light, 1, levelsOf(color)}};
        }
    }
    return last_.sight;
}

Sight see(SampleShader& shader, ColorDecoder& decoder, const Ray& ray, FirstSurface* first) {
    Hit hit;
    Appearance nearest;
    if (!shader.shadeNext(ray, {}, hit, nearest)) return {};
    if (first != nullptr) *first = firstSurface(shader.point());
    return seeOnwards(shader, decoder, ray, hit, nearest);
}

void seeFrom(SampleShader& shader, ColorDecoder& decoder, const Ray& ray, const MetSurface& met,
             const KnownLights& lights, bool notesLights, ViewSample& sample) {
    sample.first = firstSurface(met.point);
    const Appearance nearest = shader.shadeMet(ray, met, lights);
    if (notesLights) sample.lights = shader.lightsMet();
    sample.sight = seeOnwards(shader, decoder, ray, met.hit, nearest);
}

}  // namespace tavora::studio
