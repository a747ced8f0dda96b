#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fmt/format.h>
#include <memory>
#include <stdexcept>
#include <sys/resource.h>
#include <system_error>

#include "studio/app/commands.h"
#include "studio/app/film.h"
#include "studio/app/frames.h"
#include "studio/app/interruption.h"
#include "studio/app/job_notes.h"
#include "studio/app/picture_area.h"
#include "studio/app/progress.h"
#include "studio/app/stopped.h"
#include "studio/files/standard_streams.h"
#include "studio/render/final/renderer.h"
#include "studio/render/image/picture_file.h"
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

/// Creates the folder of a frame's file if it does not exist. An error is reported only when the
/// file is written.
void makeFolderOf(const std::string& file) {
    const std::filesystem::path folder = std::filesystem::path(file).parent_path();
    std::error_code ignored;
    if (!folder.empty()) std::filesystem::create_directories(folder, ignored);
}

// Determines the format of a file. Throws Error now, before rendering, if the file could not be
// written.
PictureFormat checkedFormat(const RenderRequest& request, const std::string& file) {
    try {
        const PictureFormat format =
            pictureFormat(file, request.depth, !request.background, request.format);
        if (isStream(file)) {
            checkStandardOutput();
        } else if (!request.keepGoing) {
            checkWritable(file);
        }
        return format;
    } catch (const std::invalid_argument& error) {
        throw Error(Fault::Usage, error.what());
    }
}

/// Clears a flag of all surfaces that match an option's patterns.
void clear(bool Surface::*flag, const std::vector<std::string>& patterns, const char* option,
           Scene& scene) {
    for (const std::string& pattern : patterns) {
        for (const std::size_t i : matchingSurfaces(scene, pattern, option))
            scene.surfaces[i].*flag = false;
    }
}

/// Opens the scene, changes it as the request says, and plays the requested animations.
std::unique_ptr<FilmScene> openScene(const RenderRequest& request, Report& report) {
    auto film = std::make_unique<FilmScene>(request.scene, request.reading);
    Scene& scene = film->scene();
    clear(&Surface::selfShadow, request.withoutSelfShadow, "--no-self-shadow", scene);
    clear(&Surface::castsShadows, request.withoutCastShadows, "--no-cast-shadows", scene);
    clear(&Surface::receivesShadows, request.withoutReceivedShadows, "--no-received-shadows",
          scene);
    clear(&Surface::normalMap, request.withoutNormalMap, "--no-normal-map", scene);
    if (request.animation.isGiven() || !request.frames.empty())
        film->play(request.animation.names, report);
    if (!film->plays()) film->closeFile();
    reportScene(scene, report);
    return film;
}

bool noShaders(const ShadingRequest& request) {
    return std::find(request.plain.begin(), request.plain.end(), "*") != request.plain.end();
}

Shading planShading(const Scene& scene, const RenderRequest& request, Report& report) {
    Shading shading{SurfaceShaders(scene.surfaces.size()), {}};
    if (noShaders(request.shading)) return shading;
    const ShaderClass shader = openShaderClass(request.shading.plugin);
    report.note(1, fmt::format("module {}", shader.module.string()));
    const ShadingRequest complete = withDefaultLook(scene, request.shading, report);
    shading.surfaces = planSurfaces(scene, complete, shader, lightNames(scene), report);
    if (std::any_of(shading.surfaces.begin(), shading.surfaces.end(), activeBlock))
        shading.module = shader.module;
    return shading;
}

/// Collects the statistics of frames.
class FilmSummary {
  public:
    void add(FrameState state, const RenderStats& stats = {}) {
        if (state == FrameState::Held) ++summary_.held;
        if (state == FrameState::Skipped) ++summary_.skipped;
        if (state != FrameState::Rendered) return;
        ++summary_.rendered;
        const double seconds = stats.buildSeconds + stats.renderSeconds;
        summary_.frameSeconds += seconds;
        summary_.slowestSeconds = std::max(summary_.slowestSeconds, seconds);
        summary_.rays += static_cast<double>(stats.primaryRays + stats.shadowRays);
    }
    void addFailed() { ++summary_.failed; }

    RenderSummary result() const {
        RenderSummary summary = summary_;
        const auto rendered = static_cast<double>(std::max<std::size_t>(summary.rendered, 1));
        summary.frameSeconds /= rendered;
        summary.rays /= rendered;
        const auto now = std::chrono::steady_clock::now();
        summary.seconds = std::chrono::duration<double>(now - start_).count();
        rusage usage{};
        ::getrusage(RUSAGE_SELF, &usage);
        summary.peakMegabytes = static_cast<double>(usage.ru_maxrss) / 1024;
        return summary;
    }

  private:
    RenderSummary summary_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

std::string textOf(const RenderSummary& summary) {
    std::string frames = fmt::format("{} frames rendered", summary.rendered);
    if (summary.held > 0) frames += fmt::format(", {} held", summary.held);
    if (summary.skipped > 0) frames += fmt::format(", {} there already", summary.skipped);
    if (summary.failed > 0) frames += fmt::format(", {} failed", summary.failed);
    return fmt::format(
        "{} in {:.1f} s: {:.2f} s a frame, {:.2f} s at most, {:.1f} million rays "
        "a frame, {:.0f} MB of memory",
        frames, summary.seconds, summary.frameSeconds, summary.slowestSeconds, summary.rays / 1e6,
        summary.peakMegabytes);
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

/// Everything that is needed to render the frames.
struct Job {
    const RenderRequest& request;
    const FrameName& files;
    PictureFormat format;
    PictureNotes notes;  ///< of all frames
    FilmRenderer& renderer;
    Report& report;

    std::string fileOf(std::optional<int> frame) const {
        return frame ? files.of(*frame) : request.output;
    }
};

void write(const Job& job, const Picture& picture, const std::string& file,
           const PictureNotes& notes) {
    if (isStream(file)) return writeOut(encodePicture(picture, job.format, notes));
    writePicture(picture, file, job.format, notes);
    job.report.note(1, fmt::format("{} written", file));
}

/// Whether a file can be skipped: it is complete, and has the same metadata.
bool isDone(const Job& job, const std::string& file, const PictureNotes& notes) {
    if (job.request.existing != Existing::Skip || isStream(file)) return false;
    if (notesOfCompletePicture(file) != notes) return false;
    job.report.note(1, fmt::format("{} is there already", file));
    return true;
}

bool exists(const std::string& file) {
    std::error_code ignored;
    return std::filesystem::exists(file, ignored);
}

void refuseExisting(const RenderRequest& request, const FrameName& files) {
    if (request.existing != Existing::Fail || isStream(request.output)) return;
    const auto check = [](const std::string& file) {
        if (!exists(file)) return;
        throw Error(Fault::Output,
                    fmt::format("{} is there already: remove it, or choose --existing skip or "
                                "overwrite",
                                file));
    };
    if (request.frames.empty()) check(request.output);
    for (const int frame : request.frames)
        check(files.of(frame));
}

void renderStill(const Job& job) {
    const std::string& file = job.request.output;
    Progress progress(job.request.progress, job.request.report.quiet);
    progress.start(1, 1);
    progress.beginFrame({}, file);
    FilmSummary summary;
    if (isDone(job, file, job.notes)) {
        progress.endFrame(FrameState::Skipped);
        summary.add(FrameState::Skipped);
        return progress.end(summary.result());
    }
    Picture picture;
    {
        // Only while rendering: a signal while the file is written ends the program at once.
        const GracefulStop stop;
        picture = job.renderer.render(
            {}, {[&](double done) { progress.update(done); }, &stop.isRequested()});
    }
    progress.clear();
    noteStats(job.renderer.stats(), job.report);
    write(job, picture, file, job.notes);
    progress.endFrame(FrameState::Rendered);
    summary.add(FrameState::Rendered, job.renderer.stats());
    progress.end(summary.result());
}

/// Renders the requested frames, one after the other.
class Film {
  public:
    explicit Film(const Job& job)
        : job_(job),
          request_(job.request),
          stop_(true),
          progress_(request_.progress, request_.report.quiet) {}

    void render() {
        progress_.start(request_.frames.size(), expectedRenders());
        for (const int frame : request_.frames) {
            if (stop_.isRequested()) break;
            renderOrReport(frame);
        }
        const RenderSummary summary = summary_.result();
        progress_.end(summary);
        job_.report.note(0, textOf(summary));
        if (stop_.isRequested() && done_ < request_.frames.size()) {
            throw Stopped(fmt::format("{} of {} frames are done, "
                                      "--existing skip goes on with the others",
                                      done_ - failed_.size(), request_.frames.size()),
                          true);
        }
        if (failed_.empty()) return;
        throw SomeFailed(fmt::format("{} of {} frames failed: {}", failed_.size(),
                                     request_.frames.size(), frameText(failed_)));
    }

  private:
    /// The frame whose picture is shown: the last multiple of `hold`, so that it does not depend
    /// on which part of the film is rendered.
    int shownIn(int frame) const {
        const int hold = request_.hold;
        return frame - ((frame % hold) + hold) % hold;
    }

    /// An estimate, without reading files: existing ones may turn out to be from another scene.
    std::size_t expectedRenders() const {
        std::size_t renders = 0;
        std::optional<int> last;
        for (const int frame : request_.frames) {
            const bool isSkipped =
                request_.existing == Existing::Skip && exists(job_.fileOf(frame));
            if (isSkipped || last == shownIn(frame)) continue;
            last = shownIn(frame);
            ++renders;
        }
        return renders;
    }

    void renderOrReport(int frame) {
        const std::string file = job_.fileOf(frame);
        progress_.beginFrame(frame, file);
        ++done_;
        try {
            const FrameState state = renderFrame(frame, file);
            progress_.endFrame(state);
            state == FrameState::Rendered ? summary_.add(state, job_.renderer.stats())
                                          : summary_.add(state);
        } catch (const Error& error) {
            const std::string text = fmt::format("frame {}: {}", frame, error.what());
            if (!request_.keepGoing || error.fault() == Fault::Module) {
                progress_.fail(text);
                throw Error(error.fault(), text);
            }
            progress_.error(text);
            job_.report.error(text);
            failed_.push_back(frame);
            summary_.addFailed();
        }
    }

    FrameState renderFrame(int frame, const std::string& file) {
        const PictureNotes notes = notesOfFrame(job_.notes, frame);
        if (isDone(job_, file, notes)) return FrameState::Skipped;
        const bool isHeld = heldPicture_ && heldFrame_ == shownIn(frame);
        if (!isHeld) {
            heldPicture_.reset();
            heldPicture_ = job_.renderer.render(
                shownIn(frame), {[this](double done) { progress_.update(done); }, nullptr});
            heldFrame_ = shownIn(frame);
            noteFrame(frame);
        }
        progress_.clear();
        makeFolderOf(file);
        write(job_, *heldPicture_, file, notes);
        return isHeld ? FrameState::Held : FrameState::Rendered;
    }

    void noteFrame(int frame) {
        const RenderStats& stats = job_.renderer.stats();
        progress_.clear();
        job_.report.note(
            1, fmt::format("frame {}: brought up to date in {:.3f} s, rendered in {:.2f} s, {} "
                           "rays; {} refits, {} rebuilds so far",
                           frame, stats.buildSeconds, stats.renderSeconds,
                           stats.primaryRays + stats.shadowRays, stats.refits, stats.rebuilds));
    }

    const Job& job_;
    const RenderRequest& request_;
    const GracefulStop stop_;
    Progress progress_;
    FilmSummary summary_;
    std::optional<Picture> heldPicture_;  ///< the last rendered picture
    int heldFrame_ = 0;
    std::size_t done_ = 0;  ///< frames begun
    std::vector<int> failed_;
};

}  // namespace

void render(const RenderRequest& request, Report& report) {
    if (request.listCameras) return listCameras(openScene(request, report)->scene());
    const PictureArea area = pictureArea(request);
    const bool isFilm = !request.frames.empty();
    const FrameName files(isFilm ? request.output : std::string());
    if (request.frames.size() > 1 && !files.hasNumber()) {
        throw Error(Fault::Usage, fmt::format("-o {}: {} frames need a place for their number, "
                                              "like out/####.png",
                                              request.output, request.frames.size()));
    }
    if (isFilm) makeFolderOf(files.of(request.frames.front()));
    const PictureFormat format =
        checkedFormat(request, isFilm ? files.of(request.frames.front()) : request.output);
    refuseExisting(request, files);
    const std::unique_ptr<FilmScene> scene = openScene(request, report);
    scene->prepare(request.camera, static_cast<double>(area.width) / area.height);
    report.note(1, fmt::format("camera \"{}\"", scene->camera().name));
    const LightSet lights = scene->lights(request.lighting);
    const Shading shading = planShading(scene->scene(), request, report);
    FilmRenderer renderer(*scene, shading, request, area);
    const Job job{request,  files, format, notesOf(request, area, format, *scene, shading),
                  renderer, report};
    isFilm ? Film(job).render() : renderStill(job);
}

}  // namespace tavora::studio
