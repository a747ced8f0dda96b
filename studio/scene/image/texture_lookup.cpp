#include "studio/scene/image/texture_lookup.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "studio/util/color.h"
#include "studio/util/deterministic_math.h"

namespace tavora::studio {
namespace {

using Imath::V2d;
using Imath::V4d;

const std::array<double, 256>& linearOfByte() {
    static const std::array<double, 256> table = [] {
        std::array<double, 256> t{};
        for (std::size_t i = 0; i < t.size(); ++i)
            t[i] = toLinear(static_cast<double>(i) / 255.0);
        return t;
    }();
    return table;
}

/// The values 0..1 of an image's bytes.
const std::array<double, 256>& fractionOfByte() {
    static const std::array<double, 256> table = [] {
        std::array<double, 256> t{};
        for (std::size_t i = 0; i < t.size(); ++i)
            t[i] = static_cast<double>(i) / 255.0;
        return t;
    }();
    return table;
}

V4d texelOf(const std::uint8_t rgba[4]) {
    const std::array<double, 256>& fraction = fractionOfByte();
    return {fraction[rgba[0]], fraction[rgba[1]], fraction[rgba[2]], fraction[rgba[3]]};
}

/// The sRGB-encoded byte of a linear value 0..1. Exact for all values of linearOfByte(),
/// since even the darkest of those are 20 steps of the table apart.
std::uint8_t encodedByte(double linear) {
    constexpr std::size_t kSteps = 65536;
    static const std::vector<std::uint8_t> table = [] {
        std::vector<std::uint8_t> t(kSteps);
        for (std::size_t i = 0; i < kSteps; ++i)
            t[i] = static_cast<std::uint8_t>(
                std::lround(255.0 * toEncoded(static_cast<double>(i) / (kSteps - 1))));
        return t;
    }();
    return table[static_cast<std::size_t>(std::lround(linear * (kSteps - 1)))];
}

/// The texels of a row or column that one texel of the next smaller level covers: two,
/// or parts of up to four where the size is odd.
struct Coverage {
    int first = 0;
    int count = 0;
    double weights[4] = {};  ///< sum 1
};

std::vector<Coverage> coverageOf(int from, int to) {
    std::vector<Coverage> all(static_cast<std::size_t>(to));
    const double width = static_cast<double>(from) / to;
    for (int i = 0; i < to; ++i) {
        Coverage& cover = all[static_cast<std::size_t>(i)];
        const double start = i * width;
        const double end = (i + 1) * width;
        cover.first = static_cast<int>(start);
        for (int k = cover.first; k < from && k < end && cover.count < 4; ++k) {
            const double overlap = std::min<double>(end, k + 1) - std::max<double>(start, k);
            if (overlap > 1e-9) {
                cover.weights[cover.count++] = overlap / width;
            } else if (cover.count == 0) {
                ++cover.first;  // only rounding makes the texel before it overlap
            }
        }
    }
    return all;
}

int wrappedOutside(Wrap wrap, long i, long n) {
    switch (wrap) {
        case Wrap::Repeat:
            return static_cast<int>(((i % n) + n) % n);
        case Wrap::MirroredRepeat: {
            const long k = ((i % (2 * n)) + 2 * n) % (2 * n);
            return static_cast<int>(k < n ? k : 2 * n - 1 - k);
        }
        default:
            return static_cast<int>(std::clamp(i, 0L, n - 1));
    }
}

inline int wrapped(Wrap wrap, long i, int size) {
    return i >= 0 && i < size ? static_cast<int>(i) : wrappedOutside(wrap, i, size);
}

/// The greatest integer that is not above `v`, which must be in the range of a long.
inline long floorOf(double v) {
    const long towardsZero = static_cast<long>(v);
    return static_cast<double>(towardsZero) > v ? towardsZero - 1 : towardsZero;
}

/// Keeps texture coordinates so small that texel indices are in the range of a long.
double clampedCoordinate(double v) {
    return std::isfinite(v) ? std::clamp(v, -1e9, 1e9) : 0.0;
}

}  // namespace

std::uint64_t TexturePyramid::sizeFor(const Image& image) {
    auto width = static_cast<std::uint64_t>(image.width);
    auto height = static_cast<std::uint64_t>(image.height);
    std::uint64_t texels = 0;
    while (width > 1 || height > 1) {
        width = std::max<std::uint64_t>(1, width / 2);
        height = std::max<std::uint64_t>(1, height / 2);
        texels += width * height;
    }
    return 4 * texels;
}

TexturePyramid::TexturePyramid(const Image& image, bool isData) {
    levels_.push_back({image.width, image.height, image.rgba});
    while (levels_.back().width > 1 || levels_.back().height > 1)
        addHalved(isData);
}

void TexturePyramid::addHalved(bool isData) {
    const Level& from = levels_.back();
    const int width = std::max(1, from.width / 2);
    const int height = std::max(1, from.height / 2);
    const std::vector<Coverage> columns = coverageOf(from.width, width);
    const std::vector<Coverage> rows = coverageOf(from.height, height);
    const std::array<double, 256>& value = isData ? fractionOfByte() : linearOfByte();
    const auto byteOf = [isData](double v) {
        return isData ? static_cast<std::uint8_t>(std::lround(255.0 * v)) : encodedByte(v);
    };
    std::vector<std::uint8_t> rgba;
    rgba.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4);
    for (const Coverage& row : rows) {
        for (const Coverage& column : columns) {
            double sum[4] = {};
            for (int y = 0; y < row.count; ++y) {
                for (int x = 0; x < column.count; ++x) {
                    const double weight = row.weights[y] * column.weights[x];
                    const std::uint8_t* texel = from.texel(column.first + x, row.first + y);
                    for (int c = 0; c < 3; ++c)
                        sum[c] += weight * value[texel[c]];
                    sum[3] += weight * texel[3];
                }
            }
            for (int c = 0; c < 3; ++c)
                rgba.push_back(byteOf(std::min(sum[c], 1.0)));
            rgba.push_back(static_cast<std::uint8_t>(std::lround(std::min(sum[3], 255.0))));
        }
    }
    halves_.push_back(std::move(rgba));
    levels_.push_back({width, height, halves_.back()});
}

V4d TexturePyramid::sample(const Level& level, Filter filter, const TextureUse& use,
                           const V2d& uv) {
    return filter == Filter::Nearest ? nearest(level, use, uv) : bilinear(level, use, uv);
}

V4d TexturePyramid::nearest(const Level& level, const TextureUse& use, const V2d& uv) {
    const int x = wrapped(use.wrapS, floorOf(uv.x * level.width), level.width);
    const int y = wrapped(use.wrapT, floorOf(uv.y * level.height), level.height);
    return texelOf(level.texel(x, y));
}

V4d TexturePyramid::bilinear(const Level& level, const TextureUse& use, const V2d& uv) {
    const double fx = uv.x * level.width - 0.5;
    const double fy = uv.y * level.height - 0.5;
    const long left = floorOf(fx);
    const long above = floorOf(fy);
    const int x0 = wrapped(use.wrapS, left, level.width);
    const int x1 = wrapped(use.wrapS, left + 1, level.width);
    const int y0 = wrapped(use.wrapT, above, level.height);
    const int y1 = wrapped(use.wrapT, above + 1, level.height);
    const double u = fx - static_cast<double>(left);
    const double v = fy - static_cast<double>(above);
    const auto texel = [&level](int x, int y) { return texelOf(level.texel(x, y)); };
    return (texel(x0, y0) * (1 - u) + texel(x1, y0) * u) * (1 - v) +
           (texel(x0, y1) * (1 - u) + texel(x1, y1) * u) * v;
}

V4d TexturePyramid::lookUp(const TextureUse& use, const V2d& uv, double footprint) const {
    const V2d position(clampedCoordinate(uv.x), clampedCoordinate(uv.y));
    const Level& finest = levels_.front();
    const double texels = footprint * std::max(finest.width, finest.height);
    if (!(texels > 1)) return sample(finest, use.magnify, use, position);
    if (!use.mipmaps) return sample(finest, use.minify, use, position);
    const double last = static_cast<double>(levels_.size() - 1);
    const double depth =
        texels < std::ldexp(1.0, static_cast<int>(last)) ? deterministic::log2(texels) : last;
    const auto lower = static_cast<std::size_t>(depth);
    const std::size_t upper = std::min(lower + 1, levels_.size() - 1);
    const double t = depth - static_cast<double>(lower);
    return sample(levels_[lower], use.minify, use, position) * (1 - t) +
           sample(levels_[upper], use.minify, use, position) * t;
}

V2d transformUv(const TextureUse& use, const V2d& uv) {
    const auto angle = static_cast<double>(use.rotation);
    const double c = angle != 0 ? deterministic::cos(angle) : 1;
    const double s = angle != 0 ? deterministic::sin(angle) : 0;
    const double x = uv.x * static_cast<double>(use.scale.x);
    const double y = uv.y * static_cast<double>(use.scale.y);
    return {c * x + s * y + static_cast<double>(use.offset.x),
            -s * x + c * y + static_cast<double>(use.offset.y)};
}

}  // namespace tavora::studio
