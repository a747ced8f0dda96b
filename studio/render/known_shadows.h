#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace tavora::studio {

/// Of each of a scene's first lights, whether all of it was met, or nothing.
/// Both where a part of it was, or where samples differ.
struct LightsMet {
    static constexpr std::size_t kMost = 16;

    std::uint16_t open = 0;  ///< a bit for each light
    std::uint16_t shut = 0;

    /// Notes a share of a light, 0..1; of lights beyond the first ones nothing.
    void note(std::size_t light, double share) {
        if (light >= kMost) return;
        const unsigned bit = 1U << light;
        if (share > 0) open = static_cast<std::uint16_t>(open | bit);
        if (share < 1) shut = static_cast<std::uint16_t>(shut | bit);
    }
    void note(const LightsMet& other) {
        open = static_cast<std::uint16_t>(open | other.open);
        shut = static_cast<std::uint16_t>(shut | other.shut);
    }

    /// 1 or 0 where all that was met of the light agrees, else negative.
    double share(std::size_t light) const {
        if (light >= kMost) return -1;
        const unsigned bit = 1U << light;
        if (((open ^ shut) & bit) == 0) return -1;
        return (open & bit) != 0 ? 1 : 0;
    }
};

/// The lights that a pixel's samples met on one mesh.
struct MeshLights {
    static constexpr std::uint32_t kNone = 0xffffffff;

    std::uint32_t mesh = kNone;  ///< in RayScene
    float distance = 0;          ///< of the first of them, along its ray
    LightsMet lights;
};

/// What a pixel and its neighbours met of the lights, by which further samples of
/// the pixel need no shadow rays. Copies are cheap.
class KnownShadows {
  public:
    bool empty() const { return count_ == 0; }

    /// Adds what one pixel met on a mesh, or kNone. What finds no room stays unknown.
    void add(const MeshLights& met);

    /// What is known of the lights where a ray meets a mesh at `distance`; null
    /// where too few pixels tell. Valid until the next add().
    const LightsMet* at(std::uint32_t mesh, float distance) const;

  private:
    static constexpr std::size_t kMost = 4;

    /// A part of a mesh about one distance.
    struct Layer {
        std::uint32_t mesh = MeshLights::kNone;
        float nearest = 0;
        float farthest = 0;
        int pixels = 0;  ///< that met it
        LightsMet lights;

        bool holds(std::uint32_t other, float distance) const;
    };
    std::span<const Layer> layers() const { return {layers_.data(), count_}; }
    bool isBehindOthers(const Layer& layer) const;

    std::array<Layer, kMost> layers_;
    std::size_t count_ = 0;
};

}  // namespace tavora::studio
