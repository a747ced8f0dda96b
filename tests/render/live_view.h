#pragma once

#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "studio/render/live_picture.h"
#include "studio/render/picture.h"

namespace tavora::studio {

/// A live picture and its owner, who waits for it.
class LiveView {
  public:
    LiveView(const Scene& scene, const std::filesystem::path& module, const LiveOptions& options);

    LivePicture& picture() { return *picture_; }
    /// The clean picture of that revision; null when it fails, or takes longer
    /// than any should.
    std::shared_ptr<const LiveFrame> clean(std::uint64_t revision);
    /// Waits for a failure.
    std::string failure();

  private:
    void hear();
    template <class Check>
    bool wait(const Check& check);

    std::mutex mutex_;
    std::condition_variable heard_;
    bool news_ = false;
    std::unique_ptr<LivePicture> picture_;  ///< last: it calls hear()
};

/// What a picture file of 8 bits holds, as LiveFrame::rgba does.
std::vector<std::uint8_t> levelsOf(const Picture& picture);

}  // namespace tavora::studio
