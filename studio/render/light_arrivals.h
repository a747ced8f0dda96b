#pragma once

#include <ImathVec.h>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "studio/render/kept_paths.h"
#include "studio/render/known_shadows.h"
#include "studio/render/ray_scene.h"
#include "studio/render/shadow_rays.h"
#include "studio/render/surface_point.h"
#include "studio/scene/lighting/light_set.h"

namespace tavora::studio {

/// What one light brings to one place, shadows counted in.
struct LightArrival {
    bool lit = false;         ///< the light reaches the place; else the rest is unspecified
    Imath::V3d direction{0};  ///< unit, the way the light travels
    Imath::V3d color{0};      ///< display-referred
};

/// The way of one light to one place, shadows aside, as arrivingLight() tells it.
struct LightWay {
    static constexpr double kUnknown = 0;

    double distance = kUnknown;
    Imath::V3d direction{0};
    Imath::V3d color{0};
};

/// What is known of the lights at a sample, by light; either may be empty, and must
/// outlive its use.
struct KnownLights {
    std::span<const double> shares;  ///< of each that reach the sample; negative: unknown
    std::span<const LightWay> ways;
};

/// The lights at one sample after the other. Each light is worked out at most
/// once a sample. One thread at a time.
///
/// A light behind both the polygon and its interpolated normal does not reach
/// the side that is seen: the surface itself is in the way.
class LightArrivals {
  public:
    /// Both must outlive it.
    LightArrivals(const RayScene& scene, const LightSet& lights);

    /// Forgets the sample before. at() sets the entry in `asked` of each light it is
    /// asked for. What is given must outlive the sample.
    void start(const SurfacePoint& point, std::uint8_t* asked, const KnownLights& known) {
        point_ = &point;
        asked_ = asked;
        shares_ = known.shares.empty() ? unknown_.data() : known.shares.data();
        ways_ = known.ways.empty() ? nullptr : known.ways.data();
        path_ = nullptr;
        ++sample_;
    }

    /// After start(): what becomes known of the lights is kept at `place` of `path`.
    void keep(KeptPath& path, KeptPath::Place place) {
        path_ = &path;
        place_ = place;
    }

    /// Works out all lights that the shading normal faces.
    void prepare();

    /// How far the shading normal faces the light: 1 straight, 0 and below
    /// not, or where the light is dark anyway. Traces nothing.
    double cosine(std::size_t light);

    /// The light at a place of LightSet::lights.
    const LightArrival& at(std::size_t light) {
        const LightArrival* arrival = atOnce(light);
        return arrival != nullptr ? *arrival : workedOut(light);
    }
    /// at() where it is known without work; else null, and workedOut() is at().
    const LightArrival* atOnce(std::size_t light) {
        Slot& slot = slots_[light];
        slot.askedAt = sample_;
        asked_[light] = 1;
        if (slot.metAt != kAlways) return nullptr;
        if (shares_[light] == 1) return &slot.whole;
        return shares_[light] == 0 ? &kDark : nullptr;
    }
    const LightArrival& workedOut(std::size_t light);

    /// Of the lights that the sample was asked for, what of them reaches it: this
    /// depends on nothing but the sample.
    LightsMet met() const;

    /// The light at any place in the world, which need not be on a surface, as it falls
    /// on the sample's; nothing is kept.
    LightArrival elsewhere(std::size_t light, const Imath::V3d& position);

    std::uint64_t shadowRays() const { return shadowRays_; }

  private:
    struct Slot {
        LightArrival whole;           ///< where nothing is in the way
        LightArrival arrival;         ///< once settled
        double distance = 0;          ///< to the light; negative where it is dark
        std::uint64_t metAt = 0;      ///< sample in which direction, colour and distance were found
        std::uint64_t settledAt = 0;  ///< sample in which the shadow was
        std::uint64_t askedAt = 0;    ///< last sample that was asked for it
        double share = 0;             ///< of the light that passes, once settled
    };
    /// Directional lights are the same everywhere, and met for good.
    static constexpr std::uint64_t kAlways = std::numeric_limits<std::uint64_t>::max();
    inline static constexpr LightArrival kDark{};

    const Slot& meet(std::size_t light) {
        Slot& slot = slots_[light];
        if (slot.metAt != sample_ && slot.metAt != kAlways) meetAnew(light);
        return slot;
    }
    void meetAnew(std::size_t light);
    /// Once a sample.
    void settle(std::size_t light, double share);
    double shareOf(std::size_t light) {
        return shares_[light] >= 0 ? shares_[light] : findShare(light);
    }
    double findShare(std::size_t light);
    KeptShare kept(std::size_t light) const;
    double traceShare(std::size_t light);
    const Ray& shadowRay();
    double passing(ShadowRays& rays);

    const RayScene* scene_;
    const LightSet* lights_;
    std::vector<Slot> slots_;
    const SurfacePoint* point_ = nullptr;
    std::uint8_t* asked_ = nullptr;   ///< by light
    const double* shares_ = nullptr;  ///< by light
    const LightWay* ways_ = nullptr;  ///< by light; null: none is known
    std::vector<double> unknown_;     ///< shares of which nothing is known
    KeptPath* path_ = nullptr;
    KeptPath::Place place_ = KeptPath::kStart;
    Ray shadowRay_;  ///< from the sample
    std::uint64_t sample_ = 0;
    std::uint64_t shadowRayFoundAt_ = 0;  ///< sample in which it was
    std::uint64_t shadowRays_ = 0;
};

}  // namespace tavora::studio
