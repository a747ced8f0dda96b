#pragma once

#include <filesystem>
#include <memory>

#include "studio/link/state_block.h"
#include "studio/render/image/picture.h"
#include "studio/render/options.h"
#include "studio/scene/lighting/light_set.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// Renders one scene as often as wanted. Holds the acceleration structure, and between renders
/// the workers' module copies. One thread at a time.
class Renderer {
  public:
    /// `scene` must outlive the renderer. Throws Error where the scene's memory budget does
    /// not hold it, std::bad_alloc or std::system_error where the machine refuses.
    explicit Renderer(const Scene& scene, SceneUse use = SceneUse::Still);
    ~Renderer();
    Renderer(const Renderer&) = delete;
    Renderer& operator=(const Renderer&) = delete;

    /// After the scene was posed anew: brings the acceleration structure to what it is now.
    /// Throws as the constructor.
    void update();

    /// `shading` has one entry a surface of the scene, `module` may be empty when none shades.
    /// One module copy is loaded per worker. `stats` may be null.
    /// Throws Error, Fault::Module when the module cannot be used, RenderStopped, and
    /// std::invalid_argument for a picture without pixels or samples.
    Picture render(const Camera& camera, const LightSet& lights, const SurfaceShaders& shading,
                   const std::filesystem::path& module, const RenderOptions& options,
                   const RenderWatch& watch, RenderStats* stats);

  private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace tavora::studio
