#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "studio/render/cache/visibility.h"

namespace tavora::studio {

/// Of each of a scene's first lights, whether samples saw all of it, or nothing. Both bits
/// are set where a sample saw a part of it, or where samples differ.
struct LightBits {
    static constexpr std::size_t kMost = 16;

    std::uint16_t visible = 0;  ///< a bit for each light
    std::uint16_t hidden = 0;

    /// Adds what one sample saw of a light; of lights beyond the first ones nothing.
    void add(std::size_t light, Visibility visibility) {
        if (light >= kMost) return;
        const unsigned bit = 1U << light;
        if (visibility.fraction() > 0) visible = static_cast<std::uint16_t>(visible | bit);
        if (visibility.fraction() < 1) hidden = static_cast<std::uint16_t>(hidden | bit);
    }
    void add(const LightBits& other) {
        visible = static_cast<std::uint16_t>(visible | other.visible);
        hidden = static_cast<std::uint16_t>(hidden | other.hidden);
    }

    /// 1 or 0 where all samples agree on the light, else not known.
    Visibility visibility(std::size_t light) const {
        if (light >= kMost) return Visibility();
        const unsigned bit = 1U << light;
        if (((visible ^ hidden) & bit) == 0) return Visibility();
        return Visibility((visible & bit) != 0 ? 1 : 0);
    }
};

/// What a pixel's samples saw of the lights on one mesh.
struct MeshVisibility {
    static constexpr std::uint32_t kNone = 0xffffffff;

    std::uint32_t mesh = kNone;  ///< in SceneIndex::meshes()
    float distance = 0;          ///< of the first of them, along its ray
    LightBits lights;
};

/// What a pixel and its neighbours saw of the lights, by which further samples of the pixel
/// need no shadow rays. Copies are cheap.
class NeighbourVisibility {
  public:
    bool isEmpty() const { return count_ == 0; }

    /// Adds what one pixel saw on a mesh, or kNone. What finds no room stays unknown.
    void add(const MeshVisibility& seen);

    /// What is known of the lights where a ray hits a mesh at `distance`; null where too few
    /// pixels tell. Valid until the next add().
    const LightBits* at(std::uint32_t mesh, float distance) const;

  private:
    static constexpr std::size_t kMost = 4;

    /// A part of a mesh about one distance.
    struct Patch {
        std::uint32_t mesh = MeshVisibility::kNone;
        float minDistance = 0;
        float maxDistance = 0;
        int pixels = 0;  ///< that show it
        LightBits lights;

        bool holds(std::uint32_t other, float distance) const;
    };
    std::span<const Patch> patches() const { return {patches_.data(), count_}; }
    bool isBehindOthers(const Patch& patch) const;

    std::array<Patch, kMost> patches_;
    std::size_t count_ = 0;
};

}  // namespace tavora::studio
