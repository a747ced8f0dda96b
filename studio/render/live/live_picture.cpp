#include "studio/render/live/live_picture.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <new>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <utility>

#include "studio/render/live/preview_request.h"
#include "studio/render/live/progressive_renderer.h"
#include "studio/render/surface/pick.h"
#include "studio/render/trace/ray_scene.h"
#include "studio/services/scene_index.h"

namespace tavora::studio {
namespace {

using Clock = std::chrono::steady_clock;

/// The scene, ready for rays. What they are traced in stays at its place.
struct LiveScene {
    explicit LiveScene(const Scene& scene) : index(scene) { rays.emplace(index); }

    /// After the scene was posed anew. A scene that is shown at rest alone is traced
    /// quickest; one that was posed is made ready to be posed again.
    void update() {
        index.refresh();
        if (rays && rays->update()) return;
        rays.reset();
        rays.emplace(index, RayScene::kRoomForCopies, SceneUse::Film);
    }

    SceneIndex index;
    std::optional<RayScene> rays;
    std::uint64_t poseRevision = 0;
};

std::shared_ptr<const StateBlock> sharedBlock(const std::optional<SurfaceShader>& shader) {
    const StateBlock* block = activeBlock(shader);
    return block == nullptr ? nullptr : std::make_shared<const StateBlock>(*block);
}

}  // namespace

/// The owner's thread posts requests; the renderer's thread takes the newest.
struct LivePicture::Parts {
    Parts(const Scene& asked, std::filesystem::path file, const LiveOptions& wanted,
          std::function<void()> heard)
        : scene(asked), module(std::move(file)), options(wanted), changed(std::move(heard)) {}
    ~Parts();

    void start() {
        thread = std::jthread([this] { work(); });
    }
    template <class Change>
    std::uint64_t post(bool retries, const Change& change);

    void hold();
    std::uint64_t goOn(const FrameTime& time);

    void work();
    bool take(PreviewRequest& request);
    bool canRender() const { return !failed && request.isComplete() && request.revision != taken; }
    void render(const PreviewRequest& request);
    void update();
    void prepare(std::uint64_t poseRevision);
    void publish(const PreviewRequest& request, LiveFrame frame);
    void release() noexcept;
    void fail(const std::string& reason);

    const Scene& scene;
    const std::filesystem::path module;
    const LiveOptions options;
    const std::function<void()> changed;

    mutable std::mutex mutex;  ///< guards what follows
    std::condition_variable posted;
    PreviewRequest request;
    bool failed = false;  ///< until a change that is worth another try
    std::string failure;
    std::shared_ptr<const LiveFrame> latest;
    LiveStats stats;
    const RayScene* ready = nullptr;       ///< once built, for the owner's own rays
    bool isUpdating = false;               ///< it will be ready again, or `failed`
    bool wasReady = false;                 ///< when the owner took the scene
    bool isReleased = false;               ///< no thread reads the scene
    std::condition_variable changedHands;  ///< when one of the two changed

    std::atomic<std::uint64_t> newest{0};  ///< revision of `request`
    std::atomic<bool> isHeld{false};       ///< the owner wants the scene for itself
    std::atomic<bool> ending{false};

    std::unique_ptr<LiveScene> built;               ///< the renderer's thread's
    std::unique_ptr<ProgressiveRenderer> renderer;  ///< after `built`
    std::uint64_t taken = 0;  ///< revision that the renderer's thread took last
    std::jthread thread;
};

LivePicture::Parts::~Parts() {
    {
        const std::lock_guard lock(mutex);
        ending = true;
    }
    posted.notify_all();
}

/// Changes the request and returns its revision.
template <class Change>
std::uint64_t LivePicture::Parts::post(bool retries, const Change& change) {
    std::uint64_t revision = 0;
    {
        const std::lock_guard lock(mutex);
        change(request);
        request.since = Clock::now();
        newest = revision = ++request.revision;
        if (retries) {
            failed = false;
            failure.clear();
        }
    }
    posted.notify_all();
    return revision;
}

/// Returns when no thread reads the scene, nor will before goOn().
void LivePicture::Parts::hold() {
    std::unique_lock lock(mutex);
    isHeld = true;
    posted.notify_all();
    changedHands.wait(lock, [this] { return isReleased; });
    wasReady = wasReady || isUpdating || ready != nullptr;
    isUpdating = false;
    ready = nullptr;
}

std::uint64_t LivePicture::Parts::goOn(const FrameTime& time) {
    return post(true, [&](PreviewRequest& next) {
        next.time = time;
        next.poseRevision = next.revision + 1;
        isHeld = isReleased = false;
        isUpdating = std::exchange(wasReady, false);
    });
}

void LivePicture::Parts::work() {
    PreviewRequest taking;
    while (take(taking)) {
        try {
            render(taking);
        } catch (const std::bad_alloc&) {
            fail("not enough memory for the picture: make the window smaller or close others");
        } catch (const std::system_error&) {
            fail("no thread can be started for the picture: close other programs");
        } catch (const std::exception& error) {
            fail(error.what());
        } catch (...) {
            fail("the picture cannot be rendered, and no reason was given");
        }
    }
}

/// Waits for a request that can be rendered, and releases the scene while its owner holds it. False
/// when all is to end.
bool LivePicture::Parts::take(PreviewRequest& wanted) {
    std::unique_lock lock(mutex);
    for (;;) {
        posted.wait(lock, [this] { return ending || (isHeld ? !isReleased : canRender()); });
        if (ending) return false;
        if (!isHeld) break;
        lock.unlock();
        release();
        lock.lock();
        isReleased = true;
        changedHands.notify_all();
    }
    wanted = request;
    taken = request.revision;
    return true;
}

void LivePicture::Parts::release() noexcept {
    try {
        if (renderer) renderer->release();
    } catch (...) {
        renderer.reset();  // another is made for the next request
    }
}

void LivePicture::Parts::render(const PreviewRequest& wanted) {
    prepare(wanted.poseRevision);
    PreviewWatch watch;
    watch.ending = [this] {
        return ending.load(std::memory_order_relaxed) || isHeld.load(std::memory_order_relaxed);
    };
    watch.superseded = [revision = wanted.revision, ending = watch.ending, this] {
        return newest.load(std::memory_order_relaxed) != revision || ending();
    };
    watch.published = [this, &wanted](LiveFrame frame) { publish(wanted, std::move(frame)); };
    renderer->render(wanted, watch);
}

void LivePicture::Parts::update() {
    try {
        built->update();
    } catch (...) {
        renderer.reset();  // what it traced in may be gone
        throw;
    }
}

void LivePicture::Parts::prepare(std::uint64_t poseRevision) {
    if (!built) {
        built = std::make_unique<LiveScene>(scene);
    } else if (!built->rays || built->poseRevision != poseRevision) {
        update();
    }
    built->poseRevision = poseRevision;
    if (!renderer) renderer = std::make_unique<ProgressiveRenderer>(*built->rays, module, options);
    const std::lock_guard lock(mutex);
    if (isHeld) return;
    ready = &*built->rays;
    isUpdating = false;
    changedHands.notify_all();
}

void LivePicture::Parts::publish(const PreviewRequest& shown, LiveFrame frame) {
    const bool first = latest == nullptr || latest->revision != shown.revision;
    auto published = std::make_shared<const LiveFrame>(std::move(frame));
    {
        const std::lock_guard lock(mutex);
        const double seconds = stats.firstPictureSeconds;
        stats = renderer->stats();
        stats.firstPictureSeconds =
            first ? std::chrono::duration<double>(Clock::now() - shown.since).count() : seconds;
        latest = std::move(published);
    }
    if (changed) changed();
}

void LivePicture::Parts::fail(const std::string& reason) {
    {
        const std::lock_guard lock(mutex);
        // What was posted meanwhile may be the remedy.
        if (request.revision != taken) return;
        failed = true;
        failure = reason;
        isUpdating = false;
        changedHands.notify_all();
    }
    if (changed) changed();
}

LivePicture::LivePicture(const Scene& scene, std::filesystem::path module,
                         const LiveOptions& options, std::function<void()> changed)
    : parts_(std::make_unique<Parts>(scene, std::move(module), options, std::move(changed))) {
    parts_->start();
}

LivePicture::~LivePicture() = default;

std::uint64_t LivePicture::setView(const Camera& camera, int width, int height) {
    return parts_->post(false, [&](PreviewRequest& request) {
        request.camera = camera;
        request.width = std::max(width, 1);
        request.height = std::max(height, 1);
        request.viewRevision = request.revision + 1;
    });
}

std::uint64_t LivePicture::setLights(std::shared_ptr<const LightSet> lights) {
    return parts_->post(false,
                        [&](PreviewRequest& request) { request.lights = std::move(lights); });
}

std::uint64_t LivePicture::setShading(const SurfaceShaders& shading) {
    if (shading.size() != parts_->scene.surfaces.size()) {
        throw std::invalid_argument("every surface needs its shading");
    }
    std::vector<std::shared_ptr<const StateBlock>> shared;
    shared.reserve(shading.size());
    for (const std::optional<SurfaceShader>& shader : shading)
        shared.push_back(sharedBlock(shader));
    return parts_->post(true, [&](PreviewRequest& request) {
        request.shading = std::move(shared);
        request.hasShading = true;
    });
}

std::uint64_t LivePicture::setSurface(std::size_t surface,
                                      const std::optional<SurfaceShader>& shader) {
    auto shared = sharedBlock(shader);
    return parts_->post(
        true, [&](PreviewRequest& request) { request.shading.at(surface) = std::move(shared); });
}

std::uint64_t LivePicture::pose(const std::function<FrameTime()>& change) {
    parts_->hold();
    return parts_->goOn(change());
}

std::shared_ptr<const LiveFrame> LivePicture::latest() const {
    const std::lock_guard lock(parts_->mutex);
    return parts_->latest;
}

std::optional<Picked> LivePicture::pickAt(int x, int y) const {
    std::unique_lock lock(parts_->mutex);
    parts_->changedHands.wait(lock, [this] { return !parts_->isUpdating; });
    const PreviewRequest& request = parts_->request;
    if (parts_->ready == nullptr || !request.camera) return std::nullopt;
    return pick(*parts_->ready, *request.camera, request.width, request.height, x, y);
}

LiveStats LivePicture::stats() const {
    const std::lock_guard lock(parts_->mutex);
    return parts_->stats;
}

std::string LivePicture::failure() const {
    const std::lock_guard lock(parts_->mutex);
    return parts_->failure;
}

}  // namespace tavora::studio
