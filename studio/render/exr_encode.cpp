#include "studio/render/exr_encode.h"

#include <ImfChannelList.h>
#include <ImfFrameBuffer.h>
#include <ImfHeader.h>
#include <ImfIO.h>
#include <ImfOutputFile.h>
#include <ImfStandardAttributes.h>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <new>
#include <vector>

namespace tavora::studio {
namespace {

constexpr std::array<const char*, 4> kChannels{"R", "G", "B", "A"};

/// A file in memory. The library swallows what fails while it finishes a file,
/// so the stream remembers.
class MemoryStream : public Imf::OStream {
  public:
    MemoryStream() : OStream("picture") {}

    void write(const char data[], int size) override {
        const auto count = static_cast<std::size_t>(size);
        try {
            if (position_ + count > bytes_.size()) bytes_.resize(position_ + count);
        } catch (...) {
            failed_ = true;
            throw;
        }
        std::memcpy(&bytes_[position_], data, count);
        position_ += count;
    }
    std::uint64_t tellp() override { return position_; }
    void seekp(std::uint64_t position) override { position_ = position; }

    std::string take() {
        if (failed_) throw std::bad_alloc();
        return std::move(bytes_);
    }

  private:
    std::string bytes_;
    std::size_t position_ = 0;
    bool failed_ = false;
};

Imath::Box2i boxOf(const PixelBox& box) {
    return {{box.left, box.top}, {box.right - 1, box.bottom - 1}};
}

Imf::Header headerOf(const Picture& picture, Imf::PixelType type, std::size_t channels) {
    Imf::Header header(boxOf({0, 0, picture.width, picture.height}), boxOf(picture.window));
    header.compression() = Imf::ZIP_COMPRESSION;
    Imf::addChromaticities(header, Imf::Chromaticities());
    for (std::size_t i = 0; i < channels; ++i)
        header.channels().insert(kChannels[i], {type});
    return header;
}

half halfOf(float value) {
    constexpr auto kMost = static_cast<float>(HALF_MAX);
    if (std::isfinite(value)) value = std::clamp(value, -kMost, kMost);
    return half(value);
}

template <class Pixel>
std::string encode(const Picture& picture, const Pixel* rgba, Imf::PixelType type,
                   std::size_t channels) {
    MemoryStream stream;
    {
        Imf::OutputFile file(stream, headerOf(picture, type, channels), 0);
        Imf::FrameBuffer frame;
        const std::size_t step = 4 * sizeof(Pixel);
        const std::size_t row = step * static_cast<std::size_t>(picture.window.width());
        for (std::size_t i = 0; i < channels; ++i) {
            frame.insert(kChannels[i],
                         Imf::Slice::Make(type, rgba + i, boxOf(picture.window), step, row));
        }
        file.setFrameBuffer(frame);
        file.writePixels(picture.window.height());
    }
    return stream.take();
}

}  // namespace

std::string encodeExr(const Picture& picture, bool wholeFloats, bool alpha) {
    const std::size_t channels = alpha ? 4 : 3;
    if (wholeFloats) return encode(picture, picture.rgba.data(), Imf::FLOAT, channels);
    std::vector<half> halves(picture.rgba.size());
    std::transform(picture.rgba.begin(), picture.rgba.end(), halves.begin(), halfOf);
    return encode(picture, halves.data(), Imf::HALF, channels);
}

}  // namespace tavora::studio
