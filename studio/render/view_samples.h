#pragma once

#include <ImathVec.h>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "studio/render/lane_shaders.h"
#include "studio/render/ray_scene.h"
#include "studio/render/sample_bundle.h"
#include "studio/render/sample_shader.h"
#include "studio/render/sight.h"
#include "studio/render/view.h"
#include "studio/scene/lighting/light_set.h"

namespace tavora::studio {

/// A place in a picture to look through.
struct ViewPlace {
    Imath::V2d at;                        ///< in pixels, from the upper left corner
    const KnownShadows* known = nullptr;  ///< of what shows about there; null: nothing
};

/// Looks through many places of a picture at once, for one render thread. One
/// thread at a time, with its ServiceBinding in place.
class ViewSampler {
  public:
    /// All must outlive it.
    ViewSampler(const RayScene& scene, const LightSet& lights, const LaneShaders& shaders,
                const View& view);

    /// `samples[i]` becomes what shows at `places[i]`, with the lights met there if
    /// `notesLights`. Neighbours next to each other cost least. What shows at a
    /// place does not depend on the others.
    void look(std::span<const ViewPlace> places, std::span<ViewSample> samples,
              bool notesLights = false);

    std::uint64_t viewingRays() const { return bundle_.viewingRays() + shader_.viewingRays(); }
    std::uint64_t shadowRays() const { return bundle_.shadowRays() + shader_.shadowRays(); }
    std::uint64_t evaluations() const { return shader_.evaluations(); }

  private:
    void lookTogether(std::span<const ViewPlace> places, std::span<ViewSample> samples,
                      bool notesLights);

    const View* view_;
    SampleShader shader_;
    ColorDecoder decoder_;
    SampleBundle bundle_;
    std::vector<Ray> rays_;  ///< as many as fit the bundle
    std::vector<const KnownShadows*> known_;
};

}  // namespace tavora::studio
