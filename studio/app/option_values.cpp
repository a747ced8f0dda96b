#include "studio/app/option_values.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <fmt/format.h>
#include <limits>
#include <span>
#include <string_view>
#include <vector>

#include "studio/scene/settings/look.h"
#include "studio/scene/settings/setting_names.h"
#include "studio/util/error.h"

namespace tavora::studio {
namespace {

template <class Number>
std::optional<Number> numberOf(std::string_view text) {
    Number number{};
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end || text.empty()) return {};
    if constexpr (std::is_floating_point_v<Number>) {
        if (!std::isfinite(number)) return {};
    }
    return number;
}

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    while (true) {
        const std::size_t end = text.find(separator);
        parts.push_back(text.substr(0, end));
        if (end == std::string_view::npos) return parts;
        text.remove_prefix(end + 1);
    }
}

// `count` numbers separated by commas; empty for any other text.
template <class Number>
std::optional<std::vector<Number>> numbersOf(std::string_view text, std::size_t count) {
    std::vector<Number> numbers;
    for (const std::string_view part : split(text, ',')) {
        const std::optional<Number> number = numberOf<Number>(part);
        if (!number) return {};
        numbers.push_back(*number);
    }
    if (numbers.size() != count) return {};
    return numbers;
}

constexpr std::array<std::pair<std::string_view, Imath::V3d>, 4> kNamedColors{{
    {"black", Imath::V3d(0)},
    {"grey", Imath::V3d(0.5)},
    {"gray", Imath::V3d(0.5)},
    {"white", Imath::V3d(1)},
}};

std::optional<Imath::V3d> hexColor(std::string_view text) {
    unsigned rgb = 0;
    if (text.size() != 7 || text[0] != '#') return {};
    const char* end = text.data() + text.size();
    if (std::from_chars(text.data() + 1, end, rgb, 16).ptr != end) return {};
    return Imath::V3d(rgb >> 16, (rgb >> 8) & 0xffU, rgb & 0xffU) / 255.0;
}

std::optional<Imath::V3d> numberColor(std::string_view text) {
    if (const auto grey = numbersOf<double>(text, 1)) return Imath::V3d((*grey)[0]);
    if (const auto rgb = numbersOf<double>(text, 3)) {
        return Imath::V3d((*rgb)[0], (*rgb)[1], (*rgb)[2]);
    }
    return {};
}

// The index of the dot between surface and setting. The setting "zones[1].color" itself has a
// dot, and so may surface names that look like that.
std::size_t settingDot(const std::string& left) {
    std::size_t found = left.rfind('.');
    for (const char* list : {".zones[", ".zoneList["}) {
        const std::size_t dot = left.rfind(list);
        if (dot == std::string::npos) continue;
        const std::string_view rest = std::string_view(left).substr(left.find('[', dot));
        if (std::count(rest.begin(), rest.end(), '.') <= 1) found = dot;
    }
    return found;
}

// The indices of all "=" in `text`, except those after a backslash.
std::vector<std::size_t> equalSigns(std::string_view text) {
    std::vector<std::size_t> signs;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\') {
            ++i;
        } else if (text[i] == '=') {
            signs.push_back(i);
        }
    }
    return signs;
}

bool isFraction(double value) {
    return value >= 0 && value <= 1;
}

}  // namespace

void refuse(const std::string& wanted, const std::string& text) {
    throw Error(Fault::Usage, fmt::format("must be {}, not \"{}\"", wanted, text));
}

int wholeNumber(const std::string& text, int min, int max) {
    const std::optional<int> number = numberOf<int>(text);
    if (number && *number >= min && *number <= max) return *number;
    refuse(fmt::format("a whole number from {} to {}", min, max), text);
}

double realNumber(const std::string& text, double min, double max) {
    const std::optional<double> number = numberOf<double>(text);
    if (number && *number >= min && *number <= max) return *number;
    refuse(fmt::format("a number from {} to {}", min, max), text);
}

std::pair<int, int> sampleCounts(const std::string& text) {
    constexpr int kMaxSamples = 65535;
    const std::size_t dots = text.find("..");
    const std::optional<int> min = numberOf<int>(text.substr(0, dots));
    const std::optional<int> max =
        dots == std::string::npos ? min : numberOf<int>(text.substr(dots + 2));
    if (min && max && *min >= 1 && *min <= *max && *max <= kMaxSamples) {
        return {*min, *max > *min ? *max : 0};
    }
    refuse(fmt::format("a number of samples from 1 to {}, or LEAST..MOST like 4..64", kMaxSamples),
           text);
}

TileNumber tileNumber(const std::string& text) {
    const auto parts = split(text, '/');
    const auto number = numberOf<int>(parts.front());
    const auto count = numberOf<int>(parts.back());
    if (parts.size() == 2 && number && count && *number >= 1 && *number <= *count &&
        *count <= kMostTiles)
        return {*number, *count};
    refuse("a tile's number and how many there are, like 2/6", text);
}

std::pair<int, int> resolution(const std::string& text) {
    constexpr int kMaxSide = 65536;
    const std::vector<std::string_view> sides = split(text, 'x');
    if (sides.size() == 2) {
        const std::optional<int> width = numberOf<int>(sides[0]);
        const std::optional<int> height = numberOf<int>(sides[1]);
        const bool fits = width && height && *width >= 1 && *height >= 1 && *width <= kMaxSide &&
                          *height <= kMaxSide;
        if (fits) return {*width, *height};
    }
    refuse(fmt::format("WIDTHxHEIGHT like 1280x720, each 1 to {}", kMaxSide), text);
}

std::uint64_t memorySize(const std::string& text) {
    constexpr std::uint64_t kMinBytes = 1'000'000;
    const auto bytes = numberOf<std::uint64_t>(text);
    if (bytes && *bytes >= kMinBytes) return *bytes;
    refuse("at least a million bytes, like 8G or 500M", text);
}

double percentage(const std::string& text) {
    const std::string number = text.ends_with('%') ? text.substr(0, text.size() - 1) : text;
    return realNumber(number, 0.01, 10000) / 100;
}

CropFractions cropFractions(const std::string& text) {
    if (const auto crop = numbersOf<double>(text, 4)) {
        const CropFractions fractions{(*crop)[0], (*crop)[1], (*crop)[2], (*crop)[3]};
        const bool inside = isFraction(fractions[0]) && isFraction(fractions[1]) &&
                            isFraction(fractions[2]) && isFraction(fractions[3]);
        if (inside && fractions[0] < fractions[2] && fractions[1] < fractions[3]) return fractions;
    }
    refuse("LEFT,TOP,RIGHT,BOTTOM from 0 to 1 like 0.25,0,0.75,0.5", text);
}

PixelBox cropPixels(const std::string& text) {
    if (const auto crop = numbersOf<int>(text, 4)) {
        const PixelBox box{(*crop)[0], (*crop)[1], (*crop)[2], (*crop)[3]};
        if (box.left >= 0 && box.top >= 0 && box.left < box.right && box.top < box.bottom) {
            return box;
        }
    }
    refuse("LEFT,TOP,RIGHT,BOTTOM in pixels like 100,100,200,150", text);
}

Imath::V3d color(const std::string& text) {
    for (const auto& [name, value] : kNamedColors) {
        if (name == text) return value;
    }
    if (const auto rgb = hexColor(text)) return *rgb;
    const std::optional<Imath::V3d> rgb = numberColor(text);
    if (rgb && isFraction(rgb->x) && isFraction(rgb->y) && isFraction(rgb->z)) return *rgb;
    refuse("a colour: #rrggbb, R,G,B from 0 to 1, black, grey or white", text);
}

std::optional<Imath::V3d> background(const std::string& text) {
    if (text == "transparent") return {};
    return color(text);
}

std::optional<double> exposure(const std::string& text) {
    if (text == "auto") return {};
    const std::optional<double> factor = numberOf<double>(text);
    if (factor && *factor > 0) return factor;
    refuse("auto or a number above 0", text);
}

LookChoice lookChoice(const std::string& text) {
    std::error_code ignored;
    const std::vector<std::size_t> signs = equalSigns(text);
    const bool whole = signs.empty() || std::filesystem::exists(text, ignored);
    LookChoice choice{{}, text};
    if (!whole) {
        const auto named = std::find_if(signs.rbegin(), signs.rend(), [&](std::size_t sign) {
            return isLook(text.substr(sign + 1));
        });
        const std::size_t sign = named == signs.rend() ? signs.back() : *named;
        choice = {text.substr(0, sign), text.substr(sign + 1)};
    }
    if (!choice.look.empty() && (whole || !choice.surfaces.empty())) return choice;
    refuse("LOOK or SURFACE=LOOK", text);
}

LightSize lightSize(const std::string& text, double max) {
    const std::size_t equals = text.rfind('=');
    const bool all = equals == std::string::npos;
    const std::string size = all ? text : text.substr(equals + 1);
    return {all ? "*" : text.substr(0, equals), realNumber(size, 0, max)};
}

SettingChange settingChange(const std::string& text) {
    std::optional<SettingChange> first;  // used if no setting is known, for the later message
    for (const std::size_t sign : equalSigns(text)) {
        const std::string left = text.substr(0, sign);
        const std::size_t dot = settingDot(left);
        if (dot == std::string::npos || dot == 0 || dot + 1 == left.size()) continue;
        SettingChange change{left.substr(0, dot), left.substr(dot + 1), text.substr(sign + 1)};
        if (isSettingName(change.setting.substr(0, change.setting.find('[')))) return change;
        if (!first) first = std::move(change);
    }
    if (first) return *first;
    refuse("SURFACE.SETTING=VALUE like '*.edgeEnable=true'", text);
}

}  // namespace tavora::studio
