#include "studio/render/image/exr_header.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <utility>

namespace tavora::studio {
namespace {

constexpr std::string_view kStart("v/1\x01\x02\0\0\0", 8);  // one part, of scanlines
constexpr std::size_t kChannelBytes = 18;    // of a channel in the list, its name of one letter too
constexpr std::size_t kLeastPixel = 6;       // three halves
constexpr std::uint64_t kMostPacked = 1040;  // times that its compression can shrink anything

/// Takes parts off the front of a header; all are empty once it has ended before its time.
struct HeaderBytes {
    std::string_view rest;
    bool isCut = false;

    std::string_view take(std::size_t size) {
        isCut = isCut || size > rest.size();
        if (isCut) return {};
        const std::string_view taken = rest.substr(0, size);
        rest.remove_prefix(size);
        return taken;
    }
    std::string_view takeName() {
        const std::string_view name = take(std::min(rest.find('\0'), rest.size()));
        take(1);
        return name;
    }
    std::int32_t takeNumber() {
        std::int32_t number = 0;
        const std::string_view taken = take(sizeof number);
        if (!taken.empty()) std::memcpy(&number, taken.data(), sizeof number);
        return number;
    }
};

// The library reads on to an empty name, whatever the length of the list.
bool isChannelList(std::string_view value) {
    if (value.size() % kChannelBytes != 1 || value.back() != 0) return false;
    for (std::size_t i = 0; i + 1 < value.size(); i += kChannelBytes) {
        if (value[i] == 0 || value[i + 1] != 0) return false;
    }
    return true;
}

// The library goes by the type and not by the length, so a wrong one would have it read the
// rest as something else.
bool isSound(std::string_view type, std::string_view value) {
    constexpr std::array<std::pair<std::string_view, std::size_t>, 6> kSizes{
        {{"box2i", 16},
         {"chromaticities", 32},
         {"compression", 1},
         {"float", 4},
         {"lineOrder", 1},
         {"v2f", 8}}};
    if (type == "string") return true;
    if (type == "chlist") return isChannelList(value);
    const auto known = std::find_if(kSizes.begin(), kSizes.end(),
                                    [&](const auto& size) { return size.first == type; });
    return known != kSizes.end() && value.size() == known->second;
}

struct Size {
    std::int64_t width = 0;
    std::int64_t height = 0;
};

Size sizeOf(std::string_view box) {
    HeaderBytes bytes{box};
    const std::int64_t left = bytes.takeNumber();
    const std::int64_t top = bytes.takeNumber();
    const std::int64_t right = bytes.takeNumber();
    return {right - left + 1, bytes.takeNumber() - top + 1};
}

// Each chunk has a place in the table behind the header, and compression its limit.
bool fitsInto(std::size_t bytes, const Size& size) {
    if (size.width <= 0 || size.height <= 0) return false;
    const auto chunks = static_cast<std::uint64_t>((size.height - 1) / kExrChunkRows + 1);
    const std::int64_t pixels = size.width * std::min<std::int64_t>(size.height, kExrChunkRows);
    return chunks <= bytes / sizeof(std::uint64_t) &&
           static_cast<std::uint64_t>(pixels) * kLeastPixel <= kMostPacked * bytes;
}

}  // namespace

bool isSoundExrHeader(std::string_view bytes) {
    HeaderBytes header{bytes};
    if (header.take(kStart.size()) != kStart) return false;
    Size window;
    for (auto name = header.takeName(); !name.empty(); name = header.takeName()) {
        const std::string_view type = header.takeName();
        const auto length = static_cast<std::uint32_t>(header.takeNumber());
        const std::string_view value = header.take(length);
        if (header.isCut || !isSound(type, value)) return false;
        if (name == "dataWindow" && type == "box2i") window = sizeOf(value);
    }
    return !header.isCut && fitsInto(header.rest.size(), window);
}

}  // namespace tavora::studio
