#include "studio/window/look_thumbnails.h"

#include <cmath>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <system_error>
#include <unistd.h>

#include "studio/edit/undo_steps.h"
#include "studio/render/display_levels.h"
#include "studio/scene/settings/look.h"
#include "studio/services/messages.h"

namespace tavora::studio {
namespace {

constexpr int kSamples = 9;  // a pixel
constexpr int kNice = 15;    // the picture comes first

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

/// Sees in the thumbnail's shape all that the camera sees in a picture of
/// width / height = `aspect`.
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
            displayLevels(picture.pixel(x, y), true, 255, levels);
            for (const unsigned level : levels)
                *to++ = static_cast<std::uint8_t>(level);
        }
    }
    return image;
}

}  // namespace

LookThumbnails::LookThumbnails(Session& session) : session_(session) {
    connect(&session_, &Session::aboutToPose, this, &LookThumbnails::letGo);
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

void LookThumbnails::letGo() {
    finish();
    isPosedAnew_ = true;
}

void LookThumbnails::renderFor(const std::vector<std::size_t>& surfaces) {
    finish();
    if (surfaces != surfaces_ || session_.revision() != revision_) made_ = 0;
    surfaces_ = surfaces;
    revision_ = session_.revision();
    Order order{fitted(session_.camera(), session_.aspect()),
                session_.lights(),
                thumbnailOptions(session_),
                {},
                false};
    const std::vector<std::string> looks = shippedLooks();
    for (std::size_t i = made_; i < looks.size(); ++i)
        order.jobs.push_back(jobFor(looks[i]));
    if (order.jobs.empty()) return;
    order.isPosedAnew = std::exchange(isPosedAnew_, false);
    stop_ = false;
    try {
        thread_ = std::jthread([this, order = std::move(order)] { run(order); });
    } catch (const std::system_error&) {
        isPosedAnew_ = true;  // no thread for pictures that nobody needs
    }
}

LookThumbnails::Job LookThumbnails::jobFor(const std::string& look) const {
    Job job{look, session_.shading()};
    const SceneSettings& now = session_.document().settings;
    for (const auto& [surface, shader] : withLook(now, readLook(look), surfaces_))
        job.shading[surface] = shader;
    return job;
}

void LookThumbnails::run(const Order& order) {
    setpriority(PRIO_PROCESS, static_cast<id_t>(syscall(SYS_gettid)), kNice);
    const QuietMessages quiet;
    try {
        if (renderer_ == nullptr) {
            renderer_ = std::make_unique<Renderer>(session_.scene());
        } else if (order.isPosedAnew) {
            renderer_->update();
        }
        for (const Job& job : order.jobs) {
            const Picture picture = renderer_->render(order.camera, *order.lights, job.shading,
                                                      session_.document().settings.module().file(),
                                                      order.options, {{}, &stop_}, nullptr);
            emit ready(QString::fromStdString(job.look), imageOf(picture));
            ++made_;
        }
    } catch (const RenderStopped&) {
        // By who needs the scene, or no picture any more.
    } catch (const std::exception&) {
        renderer_.reset();  // no memory for pictures that nobody needs
    }
}

}  // namespace tavora::studio
