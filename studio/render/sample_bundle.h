#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "studio/render/known_shadows.h"
#include "studio/render/light_arrivals.h"
#include "studio/render/ray_scene.h"
#include "studio/render/sample_shader.h"
#include "studio/render/shadow_rays.h"
#include "studio/render/shadow_stream.h"
#include "studio/render/viewing_stream.h"
#include "studio/scene/lighting/light_set.h"

namespace tavora::studio {

/// What many viewing rays meet first, and which lights shine there: traced
/// together, before any of it is shaded. One thread at a time.
class SampleBundle {
  public:
    /// Both must outlive it.
    SampleBundle(const RayScene& scene, const LightSet& lights);

    /// How many rays fit: enough to share their way, few enough that what they
    /// meet stays in the processor's cache.
    std::size_t room() const { return met_.size(); }

    /// Traces at most room() rays, which must outlive its use. `known` says, ray
    /// by ray, what needs no shadow rays, or null; `shader`, which surfaces take
    /// light.
    void trace(std::span<const Ray> rays, std::span<const KnownShadows* const> known,
               const SampleShader& shader);

    /// The first surface along a ray that is not wholly clear, or null.
    const MetSurface* met(std::size_t ray) const;
    /// What was found out of the lights there.
    KnownLights lights(std::size_t ray) const {
        KnownLights known{{&shares_[ray * lights_], lights_}, {}};
        if (!ways_.empty()) known.ways = {&ways_[ray * lights_], lights_};
        return known;
    }

    std::uint64_t viewingRays() const { return viewingRays_; }
    std::uint64_t shadowRays() const { return shadowRays_; }

  private:
    /// Where a viewing ray ends, and takes light. Its shadow rays start at the place of
    /// the same number in `starts_`.
    struct Station {
        std::uint32_t viewing;  ///< where the viewing ray stands
        const SurfacePoint* point;
        const std::uint8_t* asked;  ///< by light, whether the surface's shader asks for it
        const LightsMet* known;     ///< of the lights there, or null
    };
    /// The ways from a station to one light with a size.
    struct SoftWay {
        ShadowRays rays;
        std::uint32_t viewing = 0;  ///< where the viewing ray stands
    };
    void findSurfaces(std::span<const Ray> rays);
    const Facet& facetFor(const Ray& ray, const Hit& hit);
    void findStations(std::span<const KnownShadows* const> known, const SampleShader& shader);
    void goToSky(std::size_t light);
    void goToMiddle(std::size_t light);
    void goToPoints(std::size_t light);
    bool isToSettle(const Station& station, std::size_t light, LitPlace& place);
    bool isReached(const Station& station, std::size_t light, LitPlace& place);
    bool stepToPoints();
    void settle(std::size_t light, std::span<const double> passed);
    Ray rayFrom(const Station& station) const {
        return starts_[static_cast<std::size_t>(&station - stations_.data())].ray();
    }
    /// Share of the light that is known to pass there; negative where it is not.
    double knownShare(const Station& station, std::size_t light) const {
        if (!canBeShadowed(rig_->lights[light], *station.point)) return 1;
        return station.known != nullptr ? station.known->share(light) : -1;
    }
    double& share(std::uint32_t viewing, std::size_t light) {
        return shares_[viewing * lights_ + light];
    }

    const RayScene* scene_;
    const LightSet* rig_;
    std::size_t lights_;
    ViewingStream viewing_;
    ShadowStream shadows_;
    std::vector<Hit> hits_;
    std::vector<Facet> facets_;  ///< of the surfaces met; never grows beyond the room
    std::vector<MetSurface> met_;
    std::vector<double> shares_;  ///< by ray and light
    std::vector<LightWay> ways_;  ///< the same, of lights that have a place; empty: none has
    std::vector<Station> stations_;
    ShadowStarts starts_;
    std::vector<std::uint32_t> going_;  ///< stations, or ways, of the shadow rays
    std::vector<SoftWay> softWays_;
    std::uint64_t viewingRays_ = 0;
    std::uint64_t shadowRays_ = 0;
};

}  // namespace tavora::studio
