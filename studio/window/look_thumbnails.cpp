#include "studio/window/look_thumbnails.h"

#include <cmath>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <system_error>
#include <unistd.h>

#include "studio/edit/undo_steps.h"
#include "studio/render/image/display_encoding.h"
#include "studio/scene/settings/look.h"
#include "studio/services/messages.h"

namespace tavora::studio {
namespace {

constexpr int kSamples = 9;  // a pixel
constexpr int kNice = 15;    // lower priority than the live picture

RenderOptions thumbnailOptions(const Session& session) {
    RenderOptions options;
    options.width = LookThumbnails::kWidth;
    options.height = LookThumbnails::kHeight;
    options.samples = kSamples;
    options.threads = 1;
    options.background = session.background();
    options.time = {0, session.time()};
    return options;
}

/// A camera that shows in the thumbnail everything that `camera` shows in a picture of width /
/// height = `aspect`.
Camera fitted(Camera camera, double aspect) {
    const double wider = aspect * LookThumbnails::kHeight / LookThumbnails::kWidth;
    if (wider <= 1) return camera;
    camera.halfHeight *= wider;
    camera.verticalFov = 2 * std::atan(std::tan(camera.verticalFov / 2) * wider);
    return camera;
}

QImage imageOf(const Picture& picture) {
    QImage image(picture.width, picture.height, QImage::Format_RGBA8888);
    for (int y = 0; y < picture.height; ++y) {
        std::uint8_t* to = image.scanLine(y);
        for (int x = 0; x < picture.width; ++x) {
            unsigned levels[4];
            encodeForDisplay(picture.pixel(x, y), true, 255, levels);
            for (const unsigned level : levels)
                *to++ = static_cast<std::uint8_t>(level);
        }
    }
    return image;
}

}  // namespace

LookThumbnails::LookThumbnails(Session& session) : session_(session) {
    connect(&session_, &Session::aboutToPose, this, &LookThumbnails::releaseScene);
}

LookThumbnails::~LookThumbnails() {
    finish();
}

void LookThumbnails::stop() {
    stop_ = true;
}

void LookThumbnails::finish() {
    stop();
    if (thread_.joinable()) thread_.join();
}

void LookThumbnails::releaseScene() {
    finish();
    sceneChanged_ = true;
}

void LookThumbnails::renderFor(const std::vector<std::size_t>& surfaces) {
    finish();
    if (surfaces != surfaces_ || session_.revision() != revision_) rendered_ = 0;
    surfaces_ = surfaces;
    revision_ = session_.revision();
    Task task{fitted(session_.camera(), session_.aspect()),
              session_.lights(),
              thumbnailOptions(session_),
              {},
              false};
    const std::vector<std::string> looks = shippedLooks();
    for (std::size_t i = rendered_; i < looks.size(); ++i)
        task.jobs.push_back(makeJob(looks[i]));
    if (task.jobs.empty()) return;
    task.sceneChanged = std::exchange(sceneChanged_, false);
    stop_ = false;
    try {
        thread_ = std::jthread([this, task = std::move(task)] { run(task); });
    } catch (const std::system_error&) {
        sceneChanged_ = true;  // without a thread there are no thumbnails, which is no error
    }
}

LookThumbnails::Job LookThumbnails::makeJob(const std::string& look) const {
    Job job{look, session_.shading()};
    const SceneSettings& now = session_.document().settings;
    for (const auto& [surface, shader] : withLook(now, readLook(look), surfaces_))
        job.shading[surface] = shader;
    return job;
}

void LookThumbnails::run(const Task& task) {
    setpriority(PRIO_PROCESS, static_cast<id_t>(syscall(SYS_gettid)), kNice);
    const QuietMessages quiet;
    try {
        if (renderer_ == nullptr) {
            renderer_ = std::make_unique<Renderer>(session_.scene());
        } else if (task.sceneChanged) {
            renderer_->update();
        }
        for (const Job& job : task.jobs) {
            const Picture picture = renderer_->render(task.camera, *task.lights, job.shading,
                                                      session_.document().settings.module().file(),
                                                      task.options, {{}, &stop_}, nullptr);
            emit ready(QString::fromStdString(job.look), imageOf(picture));
            ++rendered_;
        }
    } catch (const RenderStopped&) {
        // Stopped because the scene changes, or the pictures are no longer needed.
    } catch (const std::exception&) {
        renderer_.reset();  // failing thumbnails are no error
    }
}

}  // namespace tavora::studio
