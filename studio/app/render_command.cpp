#include <algorithm>
#include <fmt/format.h>
#include <stdexcept>

#include "studio/app/commands.h"
#include "studio/app/interruption.h"
#include "studio/app/picture_area.h"
#include "studio/app/progress.h"
#include "studio/files/standard_streams.h"
#include "studio/render/picture_file.h"
#include "studio/render/renderer.h"
#include "studio/scene/gltf/reader.h"
#include "studio/setup/scene_report.h"
#include "studio/setup/scene_view.h"
#include "studio/setup/shading_plan.h"
#include "studio/setup/surface_names.h"
#include "studio/util/error.h"
#include "studio/util/text.h"

namespace tavora::studio {
namespace {

void listCameras(const Scene& scene) {
    std::string text;
    for (std::size_t i = 0; i < scene.cameras.size(); ++i) {
        text += fmt::format("{}  {}\n", i, oneLine(scene.cameras[i].name));
    }
    writeOut(text);
}

// Fails before anything is rendered for a picture that could not be written after.
PictureFormat checkedFormat(const RenderRequest& request) {
    try {
        const PictureFormat format =
            pictureFormat(request.output, request.depth, !request.background, request.format);
        isStream(request.output) ? checkStandardOutput() : checkWritable(request.output);
        return format;
    } catch (const std::invalid_argument& error) {
        throw Error(Fault::Usage, error.what());
    }
}

/// Clears a flag of the surfaces that an option names.
void clear(bool Surface::*flag, const std::vector<std::string>& patterns, const char* option,
           Scene& scene) {
    for (const std::string& pattern : patterns) {
        for (const std::size_t i : matchingSurfaces(scene, pattern, option))
            scene.surfaces[i].*flag = false;
    }
}

Scene readScene(const RenderRequest& request, Report& report) {
    Scene scene = readGltf(request.scene, request.reading);
    reportScene(scene, report);
    clear(&Surface::selfShadow, request.withoutSelfShadow, "--no-self-shadow", scene);
    clear(&Surface::castsShadows, request.withoutCastShadows, "--no-cast-shadows", scene);
    clear(&Surface::receivesShadows, request.withoutReceivedShadows, "--no-received-shadows",
          scene);
    clear(&Surface::normalMap, request.withoutNormalMap, "--no-normal-map", scene);
    return scene;
}

bool allPlain(const ShadingRequest& request) {
    return std::find(request.plain.begin(), request.plain.end(), "*") != request.plain.end();
}

struct Shading {
    SurfaceShaders surfaces;
    std::filesystem::path module;  ///< empty when no surface has a shader
};

Shading settleShading(const Scene& scene, const RenderRequest& request, Report& report) {
    Shading shading{SurfaceShaders(scene.surfaces.size()), {}};
    if (allPlain(request.shading)) return shading;
    const ShaderClass shader = openShaderClass(request.shading.plugin);
    report.note(1, fmt::format("module {}", shader.module.string()));
    const ShadingRequest asked = withDefaultLook(scene, request.shading, report);
    shading.surfaces = planSurfaces(scene, asked, shader, lightNames(scene), report);
    if (std::any_of(shading.surfaces.begin(), shading.surfaces.end(), activeBlock))
        shading.module = shader.module;
    return shading;
}

RenderOptions optionsOf(const RenderRequest& request, const PictureArea& area) {
    RenderOptions options;
    options.width = area.width;
    options.height = area.height;
    options.crop = area.crop;
    options.samples = request.samples;
    options.mostSamples = request.mostSamples;
    options.filter = request.filter;
    options.threads = request.threads;
    options.background = request.background;
    return options;
}

void noteStats(const RenderStats& stats, Report& report) {
    report.note(1, fmt::format("built in {:.2f} s, rendered in {:.2f} s", stats.buildSeconds,
                               stats.renderSeconds));
    report.note(
        2, fmt::format("{} triangles, {} primary rays, {} shadow rays, {} evaluations",
                       stats.triangles, stats.primaryRays, stats.shadowRays, stats.evaluations));
    report.note(2, fmt::format("{:.1f} samples a pixel", static_cast<double>(stats.primaryRays) /
                                                             static_cast<double>(stats.pixels)));
}

Picture renderPicture(const Scene& scene, const Camera& camera, const RenderRequest& request,
                      const PictureArea& area, Report& report) {
    const LightRig rig = lightsFor(scene, camera, request.lighting);
    const Shading shading = settleShading(scene, request, report);
    RenderStats stats;
    const PoliteStop stop;
    Progress progress(request.progress, request.report.quiet);
    const RenderWatch watch{[&](double done) { progress.update(done); }, &stop.asked()};
    Renderer renderer(scene);
    Picture picture = renderer.render(camera, rig, shading.surfaces, shading.module,
                                      optionsOf(request, area), watch, &stats);
    noteStats(stats, report);
    return picture;
}

}  // namespace

void render(const RenderRequest& request, Report& report) {
    if (request.listCameras) return listCameras(readScene(request, report));
    const PictureArea area = pictureArea(request);
    const PictureFormat format = checkedFormat(request);
    const Scene scene = readScene(request, report);
    const double aspect = static_cast<double>(area.width) / area.height;
    const Camera camera = chooseCamera(scene, request.camera, aspect);
    report.note(1, fmt::format("camera \"{}\"", camera.name));
    const Picture picture = renderPicture(scene, camera, request, area, report);
    if (isStream(request.output)) {
        writeOut(encodePicture(picture, format));
    } else {
        writePicture(picture, request.output, format);
        report.note(1, fmt::format("{} written", request.output));
    }
}

}  // namespace tavora::studio
