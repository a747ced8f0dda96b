#include "studio/window/look_thumbnails.h"

#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "studio/app/scene_view.h"
#include "studio/app/shader_class.h"
#include "studio/render/display_levels.h"
#include "studio/scene/look.h"
#include "studio/scene/settings.h"
#include "studio/services/messages.h"

namespace tavora::studio {
namespace {

constexpr int kSamples = 9;  // a pixel
constexpr int kNice = 15;    // the picture comes first

StateBlock blockWearing(const std::string& look, const Session& session) {
    Settings settings = settingsOf(builtInSettings(session.document().moduleCopy()));
    applySettings(settings, readLook(look).settings, look);
    settleLightList(settings, lightNames(session.lights()));
    return blockOf(settings);
}

RenderOptions thumbnailOptions() {
    RenderOptions options;
    options.width = LookThumbnails::kWidth;
    options.height = LookThumbnails::kHeight;
    options.samples = kSamples;
    options.threads = 1;
    return options;
}

QImage imageOf(const Picture& picture) {
    QImage image(picture.width, picture.height, QImage::Format_RGBA8888);
    for (int y = 0; y < picture.height; ++y) {
        std::uint8_t* to = image.scanLine(y);
        for (int x = 0; x < picture.width; ++x) {
            unsigned levels[4];
            displayLevels(picture.pixel(x, y), true, 255, levels);
            for (const unsigned level : levels)
                *to++ = static_cast<std::uint8_t>(level);
        }
    }
    return image;
}

}  // namespace

LookThumbnails::LookThumbnails(Session& session) : session_(session) {
    std::vector<Job> jobs;
    const std::size_t surfaces = session.document().scene().surfaces.size();
    for (const std::string& look : shippedLooks()) {
        jobs.push_back(
            {look, std::vector<SurfaceShading>(surfaces, {blockWearing(look, session)})});
    }
    const double aspect = static_cast<double>(kWidth) / kHeight;
    const Camera camera = chooseCamera(session.document().scene(), {}, aspect);
    thread_ = std::jthread([this, jobs = std::move(jobs), camera] { run(jobs, camera); });
}

LookThumbnails::~LookThumbnails() {
    stop_ = true;
}

void LookThumbnails::run(const std::vector<Job>& jobs, const Camera& camera) {
    setpriority(PRIO_PROCESS, static_cast<id_t>(syscall(SYS_gettid)), kNice);
    const QuietMessages quiet;
    try {
        Renderer renderer(session_.document().scene());
        for (const Job& job : jobs) {
            const Picture picture = renderer.render(camera, session_.lights(), job.shading,
                                                    session_.document().module(),
                                                    thumbnailOptions(), {{}, &stop_}, nullptr);
            emit ready(QString::fromStdString(job.look), imageOf(picture));
        }
    } catch (const std::exception&) {
        // Stopped, or no memory for pictures that nobody needs.
    }
}

}  // namespace tavora::studio
