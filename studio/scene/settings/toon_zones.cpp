#include "studio/scene/settings/toon_zones.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

#include "studio/util/color.h"

namespace tavora::studio {
namespace {

using Imath::V3d;
using Json = nlohmann::ordered_json;

constexpr int kGrid = 48;             // texels a side that tell of a texture
constexpr double kDarkMiddle = -0.5;  // the cosine in the middle of the side away from the light
constexpr double kVisible = 1.0 / 255;

V3d encoded(const V3d& linear) {
    return {toEncoded(linear.x), toEncoded(linear.y), toEncoded(linear.z)};
}

V3d mix(const V3d& a, const V3d& b, double share) {
    return a * (1 - share) + b * share;
}

/// The border between shade and base colour over the cosine to the light.
struct Border {
    explicit Border(const ToonShade& toon)
        : start(rounded(static_cast<double>(toon.toony) - 1 - static_cast<double>(toon.shift))),
          end(rounded(1 - static_cast<double>(toon.toony) - static_cast<double>(toon.shift))) {}

    /// Files round their numbers: 0.95 - 1 + 0.05 is to be 0.
    static double rounded(double cosine) { return std::round(cosine * 1e6) / 1e6; }

    /// Share of the base colour.
    double at(double cosine) const {
        if (!(end > start)) return cosine > start ? 1 : 0;
        return std::clamp((cosine - start) / (end - start), 0.0, 1.0);
    }

    double start;
    double end;
};

/// Both tones at one place, scene-linear.
struct Tones {
    V3d base;
    V3d shade;
};

V3d texelAt(const Scene& scene, const std::optional<TextureUse>& use, int x, int y) {
    if (!use) return V3d(1);
    const Image& image = scene.images[static_cast<std::size_t>(use->image)];
    const int column = (2 * x + 1) * image.width / (2 * kGrid);
    const int row = (2 * y + 1) * image.height / (2 * kGrid);
    const std::uint8_t* rgba =
        &image.rgba[(static_cast<std::size_t>(row) * static_cast<std::size_t>(image.width) +
                     static_cast<std::size_t>(column)) *
                    4];
    return {toLinear(rgba[0] / 255.0), toLinear(rgba[1] / 255.0), toLinear(rgba[2] / 255.0)};
}

std::vector<Tones> tonesOf(const Scene& scene, const Surface& surface) {
    const ToonShade& toon = *surface.toon;
    const Imath::V4f& factor = surface.baseColor;
    const V3d base(Imath::V3f(factor.x, factor.y, factor.z));
    const int side = surface.baseColorTexture || toon.shadeTexture ? kGrid : 1;
    std::vector<Tones> tones;
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            tones.push_back({base * texelAt(scene, surface.baseColorTexture, x, y),
                             V3d(toon.shadeColor) * texelAt(scene, toon.shadeTexture, x, y)});
        }
    }
    return tones;
}

/// A zone's colour over the surface's own, as it looks: own + weight (colour - own).
struct Paint {
    V3d color{0};
    double weight = 1;
    double error = 0;  ///< root of the mean square, over texels and channels

    /// Opacities count twice.
    double opacity() const { return std::sqrt(weight); }
};

/// Makes the paint that comes nearest to mixtures of both tones, by least squares
/// over the texels: a straight line from own colours to wanted ones, of one slope
/// for all channels.
class Painter {
  public:
    Painter(const Scene& scene, const Surface& surface)
        : tones_(tonesOf(scene, surface)),
          ownShows_(surface.baseColorTexture || surface.emissive != Imath::V3f(0)) {
        for (const Tones& tone : tones_)
            mean_ += encoded(tone.base) / static_cast<double>(tones_.size());
    }

    const V3d& meanBase() const { return mean_; }

    /// Display-referred, of the mean texel.
    V3d wanted(double baseShare) const { return wantedOf(baseShare).mean; }

    Paint paint(double baseShare) const {
        if (baseShare >= 1) return {mean_, ownShows_ ? 0.0 : 1.0};
        const Wanted wanted = wantedOf(baseShare);
        double together = 0;
        double spread = 0;
        for (std::size_t i = 0; i < tones_.size(); ++i) {
            const V3d own = encoded(tones_[i].base) - mean_;
            together += own.dot(wanted.colors[i] - wanted.mean);
            spread += own.length2();
        }
        const double slope = spread > 0 ? std::clamp(together / spread, 0.0, 1.0) : 0;
        Paint paint;
        paint.weight = 1 - slope;
        const V3d color = paint.weight > 0 ? (wanted.mean - mean_ * slope) / paint.weight : mean_;
        for (int c = 0; c < 3; ++c)
            paint.color[c] = std::clamp(color[c], 0.0, 1.0);
        paint.error = errorOf(paint, wanted.colors);
        return paint;
    }

  private:
    struct Wanted {
        std::vector<V3d> colors;  ///< display-referred, by texel
        V3d mean{0};
    };

    Wanted wantedOf(double baseShare) const {
        Wanted wanted;
        for (const Tones& tone : tones_) {
            wanted.colors.push_back(encoded(mix(tone.shade, tone.base, baseShare)));
            wanted.mean += wanted.colors.back() / static_cast<double>(tones_.size());
        }
        return wanted;
    }

    double errorOf(const Paint& paint, const std::vector<V3d>& wanted) const {
        double sum = 0;
        for (std::size_t i = 0; i < tones_.size(); ++i) {
            const V3d own = encoded(tones_[i].base);
            sum += (mix(own, paint.color, paint.weight) - wanted[i]).length2();
        }
        return std::sqrt(sum / (3 * static_cast<double>(tones_.size())));
    }

    std::vector<Tones> tones_;
    bool ownShows_;  ///< the base tone is left to the surface's own colour
    V3d mean_{0};    ///< display-referred, of the base colour
};

Json zone(double position, const Paint& paint) {
    return {{"position", position},
            {"color", {paint.color.x, paint.color.y, paint.color.z}},
            {"opacity", paint.opacity()}};
}

/// Between two zones, half of both; its opacity says how much of the upper colour
/// its own has, and is chosen so that `wanted` shows in the middle.
Json blendZone(double position, const Paint& lower, const Paint& upper, const V3d& own,
               const V3d& wanted) {
    const double opacity = (lower.opacity() + upper.opacity()) / 2;
    const V3d way = (upper.color - lower.color) * opacity;
    const V3d rest = wanted - own * (1 - opacity) - lower.color * opacity;
    const double share =
        way.length2() > 0 ? std::clamp(rest.dot(way) / way.length2(), 0.0, 1.0) : 0.5;
    const V3d color = mix(lower.color, upper.color, share);
    return {{"position", position},
            {"color", {color.x, color.y, color.z}},
            {"opacity", share},
            {"blend", true}};
}

/// The zones from 0, all that faces away, to 1, straight at the light.
Json zoneList(const Border& border, const Painter& painter) {
    const double first = std::clamp(border.start, 0.0, 1.0);
    const double last = std::clamp(border.end, 0.0, 1.0);
    const Paint dark = painter.paint(border.start >= 0 ? 0 : border.at(kDarkMiddle));
    const Paint lit = painter.paint(border.start >= 1 ? 0 : last > first ? border.at(last) : 1);
    Json zones = Json::array({zone(0, dark)});
    if (last > first) {
        const double middle = (first + last) / 2;
        if (first > 0) zones.push_back(zone(first, dark));
        zones.push_back(
            blendZone(middle, dark, lit, painter.meanBase(), painter.wanted(border.at(middle))));
    }
    if (last < 1) zones.push_back(zone(last, lit));
    zones.push_back(zone(1, lit));
    return zones;
}

std::vector<std::string> inexactOf(const Border& border, const Painter& painter) {
    std::vector<std::string> all;
    if (border.end > border.start && border.start < 1 && border.end > 0)
        all.emplace_back("the soft border is a smooth step");
    if (border.start < 0 && border.end > -1)
        all.emplace_back("the border's part on the side away from the light is one colour");
    const double error = painter.paint(0).error;
    if (error > kVisible)
        all.push_back(fmt::format("the shade texture is met to {:.0f} of 255", error * 255));
    return all;
}

}  // namespace

ToonZones toonZones(const Scene& scene, const Surface& surface) {
    const Border border(*surface.toon);
    const Painter painter(scene, surface);
    ToonZones zones;
    zones.settings = {{"zoneList", zoneList(border, painter)},
                      {"useAllLights", false},
                      {"lightList", "all"},
                      {"lightPower", "Linear"},
                      {"forceColor", 1},
                      {"colorTextureUse", "None"},
                      {"highlightEnable", "Off"},
                      {"highlightOutlineEnable", false},
                      {"edgeEnable", false},
                      {"slopeEnable", false},
                      {"inkoverEnable", false}};
    zones.inexact = inexactOf(border, painter);
    return zones;
}

}  // namespace tavora::studio
