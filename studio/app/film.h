#pragma once

#include <cstdint>
#include <optional>

#include "studio/app/picture_area.h"
#include "studio/app/requests.h"
#include "studio/render/final/renderer.h"
#include "studio/setup/film_scene.h"

namespace tavora::studio {

/// What shades a scene.
struct Shading {
    SurfaceShaders surfaces;
    std::filesystem::path module;  ///< empty when no surface has a shader
};

/// Renders a scene at any of its times; the scene and what rays are traced in stay from one
/// to the next. One thread.
class FilmRenderer {
  public:
    /// All must outlive it. `scene` is settled.
    FilmRenderer(FilmScene& scene, const Shading& shading, const RenderRequest& request,
                 const PictureArea& area)
        : scene_(scene), shading_(shading), request_(request), area_(area) {}

    /// A frame, or the still that the request asks for. Throws Error, RenderStopped.
    Picture render(std::optional<int> frame, const RenderWatch& watch);

    /// Of the last picture: refits and rebuilds since the first.
    const RenderStats& stats() const { return stats_; }

  private:
    RenderOptions options(std::optional<int> frame) const;
    double secondsOf(std::optional<int> frame) const;
    void pose(double seconds);
    Picture renderNow(const RenderOptions& options, const RenderWatch& watch);
    Picture expose(const RenderOptions& options, const RenderWatch& watch);

    FilmScene& scene_;
    const Shading& shading_;
    const RenderRequest& request_;
    const PictureArea& area_;
    std::optional<Renderer> renderer_;
    std::optional<double> posedAt_;  ///< seconds; none: at rest
    bool isBuilt_ = false;           ///< and counted, for the scene as it is posed
    RenderStats stats_;
};

}  // namespace tavora::studio
