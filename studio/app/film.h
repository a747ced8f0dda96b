#pragma once

#include <cstdint>
#include <optional>

#include "studio/app/picture_area.h"
#include "studio/app/requests.h"
#include "studio/render/final/renderer.h"
#include "studio/setup/film_scene.h"

namespace tavora::studio {

/// The shaders of a scene's surfaces, and the module that has them.
struct Shading {
    SurfaceShaders surfaces;
    std::filesystem::path module;  ///< empty when no surface has a shader
};

/// Renders a scene at any of its times. The renderer and its acceleration structure are reused
/// from picture to picture. One thread.
class FilmRenderer {
  public:
    /// All must outlive it. `scene` must have been prepared.
    FilmRenderer(FilmScene& scene, const Shading& shading, const RenderRequest& request,
                 const PictureArea& area)
        : scene_(scene), shading_(shading), request_(request), area_(area) {}

    /// Renders a frame of the film, or without a frame number the request's still. Throws Error
    /// and RenderStopped.
    Picture render(std::optional<int> frame, const RenderWatch& watch);

    /// Statistics of the last picture; refits and rebuilds are counted since the first.
    const RenderStats& stats() const { return stats_; }

  private:
    RenderOptions options(std::optional<int> frame) const;
    double secondsOf(std::optional<int> frame) const;
    void pose(double seconds);
    Picture renderNow(const RenderOptions& options, const RenderWatch& watch);
    Picture renderMotionBlur(const RenderOptions& options, const RenderWatch& watch);

    FilmScene& scene_;
    const Shading& shading_;
    const RenderRequest& request_;
    const PictureArea& area_;
    std::optional<Renderer> renderer_;
    std::optional<double> posedAt_;  ///< seconds; empty: in the rest pose
    bool isBuilt_ = false;           ///< the time of building for this pose was counted
    RenderStats stats_;
};

}  // namespace tavora::studio
