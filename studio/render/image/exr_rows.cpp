#include "studio/render/image/exr_rows.h"

#include <Iex.h>
#include <ImfChannelList.h>
#include <ImfFrameBuffer.h>
#include <ImfHeader.h>
#include <ImfIO.h>
#include <ImfInputFile.h>
#include <ImfOutputFile.h>
#include <ImfStandardAttributes.h>
#include <ImfStringAttribute.h>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <new>
#include <vector>

#include "studio/render/image/exr_header.h"

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

Imf::PixelType typeOf(const PictureFormat& format) {
    return format.depth == PictureDepth::Float ? Imf::FLOAT : Imf::HALF;
}

Imf::Header headerOf(const StoredPicture& picture) {
    Imf::Header header(boxOf({0, 0, picture.width, picture.height}), boxOf(picture.window));
    header.compression() = Imf::ZIP_COMPRESSION;
    Imf::addChromaticities(header, Imf::Chromaticities());
    for (std::size_t i = 0; i < picture.format.channels(); ++i)
        header.channels().insert(kChannels[i], {typeOf(picture.format)});
    for (const auto& [name, text] : picture.notes)
        header.insert(name, Imf::StringAttribute(text));
    return header;
}

/// Where the library finds, or puts, the rows of a box.
Imf::FrameBuffer frameOf(const StoredPicture& picture, const PixelBox& box, const char* rows) {
    const PictureFormat& format = picture.format;
    Imf::FrameBuffer frame;
    const std::size_t pixel = format.pixelBytes();
    const std::size_t sample = pixel / format.channels();
    for (std::size_t i = 0; i < format.channels(); ++i) {
        frame.insert(kChannels[i], Imf::Slice::Make(typeOf(format), rows + i * sample, boxOf(box),
                                                    pixel, picture.rowBytes()));
    }
    return frame;
}

half halfOf(float value) {
    constexpr auto kMost = static_cast<float>(HALF_MAX);
    if (std::isfinite(value)) value = std::clamp(value, -kMost, kMost);
    return half(value);
}

/// A file's bytes, for reading.
class BytesStream : public Imf::IStream {
  public:
    explicit BytesStream(std::string_view bytes) : IStream("picture"), bytes_(bytes) {}

    bool read(char data[], int size) override {
        const auto count = static_cast<std::size_t>(size);
        if (size < 0 || position_ > bytes_.size() || bytes_.size() - position_ < count)
            throw Iex::InputExc("truncated");
        std::memcpy(data, bytes_.data() + position_, count);
        position_ += count;
        return position_ < bytes_.size();
    }
    std::uint64_t tellg() override { return position_; }
    void seekg(std::uint64_t position) override { position_ = position; }

  private:
    std::string_view bytes_;
    std::size_t position_ = 0;
};

/// Whether the header is one that headerOf() makes; then what it says.
bool readHeader(const Imf::Header& header, StoredPicture& picture) {
    std::vector<std::string> names;
    const Imf::Channel* first = nullptr;
    for (auto channel = header.channels().begin(); channel != header.channels().end(); ++channel) {
        if (first != nullptr && channel.channel().type != first->type) return false;
        first = &channel.channel();
        names.emplace_back(channel.name());
    }
    const bool alpha = names.size() == 4;
    if (names != (alpha ? std::vector<std::string>{"A", "B", "G", "R"}
                        : std::vector<std::string>{"B", "G", "R"}))
        return false;
    if (first->type == Imf::UINT || header.compression() != Imf::ZIP_COMPRESSION) return false;
    picture.format = {PictureFormat::Kind::Exr,
                      first->type == Imf::FLOAT ? PictureDepth::Float : PictureDepth::Half, alpha};
    const Imath::Box2i& whole = header.displayWindow();
    const Imath::Box2i& window = header.dataWindow();
    picture.width = whole.max.x + 1;
    picture.height = whole.max.y + 1;
    picture.window = {window.min.x, window.min.y, window.max.x + 1, window.max.y + 1};
    if (whole.min != Imath::V2i(0) || window.min.x < 0 || window.min.y < 0 ||
        !whole.intersects(window.max))
        return false;
    for (auto attribute = header.begin(); attribute != header.end(); ++attribute) {
        const auto* text = dynamic_cast<const Imf::StringAttribute*>(&attribute.attribute());
        if (text != nullptr) picture.notes[attribute.name()] = text->value();
    }
    return true;
}

// Memory grows with what is there, not with what the header promises.
void readChunk(Imf::InputFile& file, int top, StoredPicture& picture) {
    PixelBox box = picture.window;
    box.top = top;
    box.bottom = std::min(top + kExrChunkRows, picture.window.bottom);
    const std::size_t before = picture.rows.size();
    picture.rows.resize(before + static_cast<std::size_t>(box.height()) * picture.rowBytes());
    file.setFrameBuffer(frameOf(picture, box, &picture.rows[before]));
    file.readPixels(box.top, box.bottom - 1);
}

}  // namespace

std::string exrRows(const Picture& picture, const PictureFormat& format) {
    const bool isHalf = format.depth != PictureDepth::Float;
    const std::size_t sample = format.pixelBytes() / format.channels();
    std::string rows(picture.rgba.size() / 4 * format.pixelBytes(), '\0');
    char* to = rows.data();
    for (std::size_t i = 0; i < picture.rgba.size(); ++i) {
        if (i % 4 >= format.channels()) continue;
        const float value = picture.rgba[i];
        const half small = isHalf ? halfOf(value) : half(0.0F);
        std::memcpy(to, isHalf ? static_cast<const void*>(&small) : &value, sample);
        to += sample;
    }
    return rows;
}

std::string encodeExr(const StoredPicture& picture) {
    MemoryStream stream;
    {
        Imf::OutputFile file(stream, headerOf(picture), 0);
        file.setFrameBuffer(frameOf(picture, picture.window, picture.rows.data()));
        file.writePixels(picture.window.height());
    }
    return stream.take();
}

bool decodeExr(std::string_view bytes, StoredPicture& picture) {
    if (!isSoundExrHeader(bytes)) return false;
    try {
        BytesStream stream(bytes);
        Imf::InputFile file(stream, 0);
        if (!file.isComplete() || !readHeader(file.header(), picture)) return false;
        for (int top = picture.window.top; top < picture.window.bottom; top += kExrChunkRows)
            readChunk(file, top, picture);
        return stream.tellg() == bytes.size();
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception&) {
        return false;
    }
}

}  // namespace tavora::studio
