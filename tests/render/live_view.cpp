#include "tests/render/live_view.h"

#include <chrono>
#include <png.h>
#include <stdexcept>
#include <string>

#include "studio/render/png_encode.h"

namespace tavora::studio {
namespace {

constexpr std::chrono::seconds kPatience{60};

}  // namespace

LiveView::LiveView(const Scene& scene, const std::filesystem::path& module,
                   const LiveOptions& options)
    : picture_(std::make_unique<LivePicture>(scene, module, options, [this] { hear(); })) {}

void LiveView::hear() {
    const std::lock_guard lock(mutex_);
    news_ = true;
    heard_.notify_all();
}

template <class Check>
bool LiveView::wait(const Check& check) {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (!check()) {
        std::unique_lock lock(mutex_);
        if (!heard_.wait_until(lock, end, [this] { return news_; })) return false;
        news_ = false;
    }
    return true;
}

std::shared_ptr<const LiveFrame> LiveView::clean(std::uint64_t revision) {
    std::shared_ptr<const LiveFrame> frame;
    const bool came = wait([&] {
        frame = picture_->latest();
        return (frame != nullptr && frame->revision == revision && frame->refined == 1) ||
               !picture_->failure().empty();
    });
    return came && picture_->failure().empty() ? frame : nullptr;
}

std::string LiveView::failure() {
    wait([&] { return !picture_->failure().empty(); });
    return picture_->failure();
}

std::vector<std::uint8_t> levelsOf(const Picture& picture) {
    const std::string file = encodePng(picture, false, true);
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    png_image_begin_read_from_memory(&image, file.data(), file.size());
    image.format = PNG_FORMAT_RGBA;
    std::vector<std::uint8_t> rgba(PNG_IMAGE_SIZE(image));
    if (png_image_finish_read(&image, nullptr, rgba.data(), 0, nullptr) == 0) {
        throw std::runtime_error(image.message);
    }
    return rgba;
}

}  // namespace tavora::studio
