#include "studio/render/live_picture.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <new>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <utility>

#include "studio/render/live_painter.h"
#include "studio/render/live_wish.h"
#include "studio/render/pick.h"
#include "studio/render/ray_scene.h"
#include "studio/services/scene_index.h"

namespace tavora::studio {
namespace {

using Clock = std::chrono::steady_clock;

struct LiveScene {
    explicit LiveScene(const Scene& scene) : index(scene), rays(index) {}

    SceneIndex index;
    RayScene rays;
};

std::shared_ptr<const StateBlock> sharedBlock(const std::optional<SurfaceShader>& shader) {
    const StateBlock* block = activeBlock(shader);
    return block == nullptr ? nullptr : std::make_shared<const StateBlock>(*block);
}

}  // namespace

/// The owner's thread posts wishes; the painter's thread takes the newest.
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

    void work();
    bool take(LiveWish& wish);
    void paint(const LiveWish& wish);
    void prepare();
    void publish(const LiveWish& wish, LiveFrame frame);
    void fail(const std::string& reason);

    const Scene& scene;
    const std::filesystem::path module;
    const LiveOptions options;
    const std::function<void()> changed;

    mutable std::mutex mutex;  ///< guards what follows
    std::condition_variable posted;
    LiveWish wish;
    bool failed = false;  ///< until a change that is worth another try
    std::string failure;
    std::shared_ptr<const LiveFrame> latest;
    LiveStats stats;
    const RayScene* ready = nullptr;  ///< once built, for the owner's own rays

    std::atomic<std::uint64_t> newest{0};  ///< revision of `wish`
    std::atomic<bool> ending{false};

    std::unique_ptr<LiveScene> built;      ///< the painter's thread's
    std::unique_ptr<LivePainter> painter;  ///< after `built`
    std::uint64_t taken = 0;               ///< revision that the painter's thread took last
    std::jthread thread;
};

LivePicture::Parts::~Parts() {
    {
        const std::lock_guard lock(mutex);
        ending = true;
    }
    posted.notify_all();
}

/// Changes the wish and returns its revision.
template <class Change>
std::uint64_t LivePicture::Parts::post(bool retries, const Change& change) {
    std::uint64_t revision = 0;
    {
        const std::lock_guard lock(mutex);
        change(wish);
        wish.since = Clock::now();
        newest = revision = ++wish.revision;
        if (retries) {
            failed = false;
            failure.clear();
        }
    }
    posted.notify_all();
    return revision;
}

void LivePicture::Parts::work() {
    LiveWish taking;
    while (take(taking)) {
        try {
            paint(taking);
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

/// Waits for a wish that can be painted. False when all is to end.
bool LivePicture::Parts::take(LiveWish& wanted) {
    std::unique_lock lock(mutex);
    posted.wait(lock, [this] {
        return ending || (!failed && wish.isComplete() && wish.revision != taken);
    });
    if (ending) return false;
    wanted = wish;
    taken = wish.revision;
    return true;
}

void LivePicture::Parts::paint(const LiveWish& wanted) {
    prepare();
    LiveWatch watch;
    watch.ending = [this] { return ending.load(std::memory_order_relaxed); };
    watch.overtaken = [this, revision = wanted.revision] {
        return newest.load(std::memory_order_relaxed) != revision ||
               ending.load(std::memory_order_relaxed);
    };
    watch.published = [this, &wanted](LiveFrame frame) { publish(wanted, std::move(frame)); };
    painter->paint(wanted, watch);
}

void LivePicture::Parts::prepare() {
    if (!built) built = std::make_unique<LiveScene>(scene);
    if (!painter) painter = std::make_unique<LivePainter>(built->rays, module, options);
    const std::lock_guard lock(mutex);
    ready = &built->rays;
}

void LivePicture::Parts::publish(const LiveWish& shown, LiveFrame frame) {
    const bool first = latest == nullptr || latest->revision != shown.revision;
    auto published = std::make_shared<const LiveFrame>(std::move(frame));
    {
        const std::lock_guard lock(mutex);
        const double seconds = stats.firstPictureSeconds;
        stats = painter->stats();
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
        if (wish.revision != taken) return;
        failed = true;
        failure = reason;
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
    return parts_->post(false, [&](LiveWish& wish) {
        wish.camera = camera;
        wish.width = std::max(width, 1);
        wish.height = std::max(height, 1);
        wish.viewRevision = wish.revision + 1;
    });
}

std::uint64_t LivePicture::setLights(std::shared_ptr<const LightRig> lights) {
    return parts_->post(false, [&](LiveWish& wish) { wish.lights = std::move(lights); });
}

std::uint64_t LivePicture::setShading(const SurfaceShaders& shading) {
    if (shading.size() != parts_->scene.surfaces.size()) {
        throw std::invalid_argument("every surface needs its shading");
    }
    std::vector<std::shared_ptr<const StateBlock>> shared;
    shared.reserve(shading.size());
    for (const std::optional<SurfaceShader>& shader : shading)
        shared.push_back(sharedBlock(shader));
    return parts_->post(true, [&](LiveWish& wish) {
        wish.shading = std::move(shared);
        wish.hasShading = true;
    });
}

std::uint64_t LivePicture::setSurface(std::size_t surface,
                                      const std::optional<SurfaceShader>& shader) {
    auto shared = sharedBlock(shader);
    return parts_->post(true,
                        [&](LiveWish& wish) { wish.shading.at(surface) = std::move(shared); });
}

std::shared_ptr<const LiveFrame> LivePicture::latest() const {
    const std::lock_guard lock(parts_->mutex);
    return parts_->latest;
}

std::optional<Picked> LivePicture::pickAt(int x, int y) const {
    const std::lock_guard lock(parts_->mutex);
    const LiveWish& wish = parts_->wish;
    if (parts_->ready == nullptr || !wish.camera) return std::nullopt;
    return pick(*parts_->ready, *wish.camera, wish.width, wish.height, x, y);
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
