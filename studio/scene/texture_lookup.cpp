#include "studio/scene/texture_lookup.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "studio/scene/color.h"

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

std::uint8_t toByte(double v) {
    return static_cast<std::uint8_t>(std::lround(std::clamp(v, 0.0, 1.0) * 255.0));
}

int wrapped(Wrap wrap, long i, int size) {
    const long n = size;
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

/// Keeps texel coordinates where a long holds them; textures repeat anyway.
double tamed(double v) {
    return std::isfinite(v) ? std::clamp(v, -1e9, 1e9) : 0.0;
}

}  // namespace

TexturePyramid::TexturePyramid(const Image& image) {
    levels_.push_back({image.width, image.height, image.rgba});
    while (levels_.back().width > 1 || levels_.back().height > 1) {
        levels_.push_back(halved(levels_.back()));
    }
}

TexturePyramid::Level TexturePyramid::halved(const Level& from) {
    Level to{std::max(1, from.width / 2), std::max(1, from.height / 2), {}};
    to.rgba.resize(static_cast<std::size_t>(to.width) * static_cast<std::size_t>(to.height) * 4);
    const std::array<double, 256>& linear = linearOfByte();
    for (int y = 0; y < to.height; ++y) {
        for (int x = 0; x < to.width; ++x) {
            const int x0 = std::min(2 * x, from.width - 1);
            const int x1 = std::min(2 * x + 1, from.width - 1);
            const int y0 = std::min(2 * y, from.height - 1);
            const int y1 = std::min(2 * y + 1, from.height - 1);
            const std::uint8_t* four[] = {from.texel(x0, y0), from.texel(x1, y0),
                                          from.texel(x0, y1), from.texel(x1, y1)};
            std::uint8_t* out =
                &to.rgba[(static_cast<std::size_t>(y) * static_cast<std::size_t>(to.width) +
                          static_cast<std::size_t>(x)) *
                         4];
            for (int c = 0; c < 4; ++c) {
                double sum = 0;
                for (const std::uint8_t* texel : four) {
                    sum += c < 3 ? linear[texel[c]] : texel[c] / 255.0;
                }
                out[c] = toByte(c < 3 ? toEncoded(sum / 4) : sum / 4);
            }
        }
    }
    return to;
}

V4d TexturePyramid::nearest(const Level& level, const TextureUse& use, V2d uv) {
    const int x =
        wrapped(use.wrapS, static_cast<long>(std::floor(uv.x * level.width)), level.width);
    const int y =
        wrapped(use.wrapT, static_cast<long>(std::floor(uv.y * level.height)), level.height);
    const std::uint8_t* t = level.texel(x, y);
    return V4d(t[0], t[1], t[2], t[3]) / 255.0;
}

V4d TexturePyramid::bilinear(const Level& level, const TextureUse& use, V2d uv) {
    const double fx = uv.x * level.width - 0.5;
    const double fy = uv.y * level.height - 0.5;
    const double bx = std::floor(fx);
    const double by = std::floor(fy);
    const int x0 = wrapped(use.wrapS, static_cast<long>(bx), level.width);
    const int x1 = wrapped(use.wrapS, static_cast<long>(bx) + 1, level.width);
    const int y0 = wrapped(use.wrapT, static_cast<long>(by), level.height);
    const int y1 = wrapped(use.wrapT, static_cast<long>(by) + 1, level.height);
    const double u = fx - bx;
    const double v = fy - by;
    const auto texel = [&level](int x, int y) {
        const std::uint8_t* t = level.texel(x, y);
        return V4d(t[0], t[1], t[2], t[3]) / 255.0;
    };
    return (texel(x0, y0) * (1 - u) + texel(x1, y0) * u) * (1 - v) +
           (texel(x0, y1) * (1 - u) + texel(x1, y1) * u) * v;
}

V4d TexturePyramid::lookUp(const TextureUse& use, V2d uv, double footprint) const {
    const V2d at(tamed(uv.x), tamed(uv.y));
    const Level& finest = levels_.front();
    const double texels = footprint * std::max(finest.width, finest.height);
    if (!(texels > 1)) {
        return use.magnify == Filter::Nearest ? nearest(finest, use, at)
                                              : bilinear(finest, use, at);
    }
    if (!use.mipmaps) {
        return use.minify == Filter::Nearest ? nearest(finest, use, at) : bilinear(finest, use, at);
    }
    const double last = static_cast<double>(levels_.size() - 1);
    const double depth = std::min(std::log2(texels), last);
    const auto lower = static_cast<std::size_t>(depth);
    const std::size_t upper = std::min(lower + 1, levels_.size() - 1);
    const double t = depth - static_cast<double>(lower);
    return bilinear(levels_[lower], use, at) * (1 - t) + bilinear(levels_[upper], use, at) * t;
}

V2d transformUv(const TextureUse& use, V2d uv) {
    const double c = std::cos(static_cast<double>(use.rotation));
    const double s = std::sin(static_cast<double>(use.rotation));
    const double x = uv.x * static_cast<double>(use.scale.x);
    const double y = uv.y * static_cast<double>(use.scale.y);
    return {c * x + s * y + static_cast<double>(use.offset.x),
            -s * x + c * y + static_cast<double>(use.offset.y)};
}

}  // namespace tavora::studio
