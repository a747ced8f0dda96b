#include "studio/scene/settings/toon_zones.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

#include "studio/util/color.h"

namespace tavora::studio {
namespace {

using Imath::V3d;
using Json = nlohmann::ordered_json;

constexpr int kGrid = 48;               // texels along each side that represent a texture
constexpr double kDarkMiddle = -0.5;    // cosine in the middle of the side that faces away
constexpr double kVisible = 1.0 / 255;  // the smallest error that is reported

V3d encoded(const V3d& linear) {
    return {toEncoded(linear.x), toEncoded(linear.y), toEncoded(linear.z)};
}

V3d mix(const V3d& a, const V3d& b, double fraction) {
    return a * (1 - fraction) + b * fraction;
}

/// The border between shade and base colour, as cosines between normal and light.
struct Border {
    explicit Border(const ToonShade& toon)
        : start(rounded(static_cast<double>(toon.toony) - 1 - static_cast<double>(toon.shift))),
          end(rounded(1 - static_cast<double>(toon.toony) - static_cast<double>(toon.shift))) {}

    /// Removes the rounding of the numbers in files: 0.95 - 1 + 0.05 should be 0.
    static double rounded(double cosine) { return std::round(cosine * 1e6) / 1e6; }

    /// The weight of the base colour, 0..1.
    double at(double cosine) const {
        if (!(end > start)) return cosine > start ? 1 : 0;
        return std::clamp((cosine - start) / (end - start), 0.0, 1.0);
    }

    double start;
    double end;
};

/// Both tones at one texel, scene-linear.
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

/// A zone's colour over the surface's base colour, display-referred:
/// base + weight * (color - base).
struct Overlay {
    V3d color{0};
    double weight = 1;
    double error = 0;  ///< root mean square over texels and channels

    /// The opacity that gives this weight: the shader applies a zone's opacity twice.
    double opacity() const { return std::sqrt(weight); }
};

/// Finds the overlay that comes nearest to a mixture of both tones, by least squares over
/// the texels: a linear function from base colours to wanted colours, with the same slope
/// for all channels.
class OverlayFitter {
  public:
    OverlayFitter(const Scene& scene, const Surface& surface)
        : tones_(tonesOf(scene, surface)),
          baseShows_(surface.baseColorTexture || surface.emissive != Imath::V3f(0)) {
        for (const Tones& tone : tones_)
            mean_ += encoded(tone.base) / static_cast<double>(tones_.size());
    }

    const V3d& meanBase() const { return mean_; }

    /// The mean wanted colour, display-referred.
    V3d wanted(double baseWeight) const { return wantedOf(baseWeight).mean; }

    Overlay overlay(double baseWeight) const {
        if (baseWeight >= 1) return {mean_, baseShows_ ? 0.0 : 1.0};
        const Wanted wanted = wantedOf(baseWeight);
        double covariance = 0;
        double variance = 0;
        for (std::size_t i = 0; i < tones_.size(); ++i) {
            const V3d base = encoded(tones_[i].base) - mean_;
            covariance += base.dot(wanted.colors[i] - wanted.mean);
            variance += base.length2();
        }
        const double slope = variance > 0 ? std::clamp(covariance / variance, 0.0, 1.0) : 0;
        Overlay overlay;
        overlay.weight = 1 - slope;
        const V3d color =
            overlay.weight > 0 ? (wanted.mean - mean_ * slope) / overlay.weight : mean_;
        for (int c = 0; c < 3; ++c)
            overlay.color[c] = std::clamp(color[c], 0.0, 1.0);
        overlay.error = errorOf(overlay, wanted.colors);
        return overlay;
    }

  private:
    struct Wanted {
        std::vector<V3d> colors;  ///< display-referred, by texel
        V3d mean{0};
    };

    Wanted wantedOf(double baseWeight) const {
        Wanted wanted;
        for (const Tones& tone : tones_) {
            wanted.colors.push_back(encoded(mix(tone.shade, tone.base, baseWeight)));
            wanted.mean += wanted.colors.back() / static_cast<double>(tones_.size());
        }
        return wanted;
    }

    double errorOf(const Overlay& overlay, const std::vector<V3d>& wanted) const {
        double sum = 0;
        for (std::size_t i = 0; i < tones_.size(); ++i) {
            const V3d base = encoded(tones_[i].base);
            sum += (mix(base, overlay.color, overlay.weight) - wanted[i]).length2();
        }
        return std::sqrt(sum / (3 * static_cast<double>(tones_.size())));
    }

    std::vector<Tones> tones_;
    bool baseShows_;  ///< the surface's base colour itself shows the base tone, unpainted
    V3d mean_{0};     ///< display-referred, of the base colour
};

Json zone(double position, const Overlay& overlay) {
    return {{"position", position},
            {"color", {overlay.color.x, overlay.color.y, overlay.color.z}},
            {"opacity", overlay.opacity()}};
}

/// The blend zone halfway between two zones. Its opacity is the fraction of the upper zone's
/// colour, chosen so that `wanted` shows in the middle.
Json blendZone(double position, const Overlay& lower, const Overlay& upper, const V3d& base,
               const V3d& wanted) {
    const double opacity = (lower.opacity() + upper.opacity()) / 2;
    const V3d difference = (upper.color - lower.color) * opacity;
    const V3d rest = wanted - base * (1 - opacity) - lower.color * opacity;
    const double fraction = difference.length2() > 0
                                ? std::clamp(rest.dot(difference) / difference.length2(), 0.0, 1.0)
                                : 0.5;
    const V3d color = mix(lower.color, upper.color, fraction);
    return {{"position", position},
            {"color", {color.x, color.y, color.z}},
            {"opacity", fraction},
            {"blend", true}};
}

/// The zones from 0, where surfaces face away from the light, to 1, where they face it.
Json zoneList(const Border& border, const OverlayFitter& fitter) {
    const double first = std::clamp(border.start, 0.0, 1.0);
    const double last = std::clamp(border.end, 0.0, 1.0);
    const Overlay dark = fitter.overlay(border.start >= 0 ? 0 : border.at(kDarkMiddle));
    const Overlay lit = fitter.overlay(border.start >= 1 ? 0 : last > first ? border.at(last) : 1);
    Json zones = Json::array({zone(0, dark)});
    if (last > first) {
        const double middle = (first + last) / 2;
        if (first > 0) zones.push_back(zone(first, dark));
        zones.push_back(
            blendZone(middle, dark, lit, fitter.meanBase(), fitter.wanted(border.at(middle))));
    }
    if (last < 1) zones.push_back(zone(last, lit));
    zones.push_back(zone(1, lit));
    return zones;
}

std::vector<std::string> inaccuraciesOf(const Border& border, const OverlayFitter& fitter) {
    std::vector<std::string> inaccuracies;
    if (border.end > border.start && border.start < 1 && border.end > 0)
        inaccuracies.emplace_back("the soft border is a smooth step");
    if (border.start < 0 && border.end > -1)
        inaccuracies.emplace_back(
            "the border's part on the side away from the light is one colour");
    const double error = fitter.overlay(0).error;
    if (error > kVisible)
        inaccuracies.push_back(
            fmt::format("the shade texture is met to {:.0f} of 255", error * 255));
    return inaccuracies;
}

}  // namespace

ToonZones toonZones(const Scene& scene, const Surface& surface) {
    const Border border(*surface.toon);
    const OverlayFitter fitter(scene, surface);
    ToonZones zones;
    zones.settings = {{"zoneList", zoneList(border, fitter)},
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
    zones.inexact = inaccuraciesOf(border, fitter);
    return zones;
}

}  // namespace tavora::studio
