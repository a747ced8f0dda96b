#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "studio/app/requests.h"

/// Values as they are typed after an option. Each function throws Fault::Usage that says what
/// the text must be, but not of which option. The parser's own checks of numbers would do for
/// none: they take octal and hexadecimal ones and let NaN through any range.
namespace tavora::studio {

int wholeNumber(const std::string& text, int min, int max);
double realNumber(const std::string& text, double min, double max);

/// "16", or "4..64" for as many as a pixel needs: the least, and the most or 0.
std::pair<int, int> sampleCounts(const std::string& text);

/// "1280x720"
std::pair<int, int> resolution(const std::string& text);

/// Bytes; at least a million, so that "8" is no slip.
std::uint64_t memorySize(const std::string& text);

/// "50" or "50%", as a factor.
double percentage(const std::string& text);

/// "x0,y0,x1,y1", shares of the picture from its top left corner.
CropShares cropShares(const std::string& text);

/// "x0,y0,x1,y1" in pixels, the last two excluded.
PixelBox cropPixels(const std::string& text);

/// "2/6", counted from 1.
TileNumber tileNumber(const std::string& text);

/// "#rrggbb", "r,g,b" from 0 to 1, one number for a grey, or black, grey, white.
Imath::V3d color(const std::string& text);

/// A colour, or none for "transparent".
std::optional<Imath::V3d> background(const std::string& text);

/// A factor above 0, or none for "auto".
std::optional<double> exposure(const std::string& text);

/// "0.2" for all lights, or "LIGHT=0.2", from 0 to `most`. Names may hold "=".
LightSize lightSize(const std::string& text, double most);

/// Throws what a value was not: "must be `wanted`, not ...".
[[noreturn]] void refuse(const std::string& wanted, const std::string& text);

/// Reads one of some names.
template <class Value>
auto oneOf(std::vector<std::pair<std::string, Value>> choices) {
    return [choices = std::move(choices)](const std::string& text) -> Value {
        std::string names;
        for (const auto& [name, value] : choices) {
            if (name == text) return value;
            names += (names.empty() ? "" : ", ") + name;
        }
        refuse("one of " + names, text);
    };
}

/// In names of surfaces and lights a backslash takes the next character as it is; so
/// "a\=b" is the name a=b, and "a\*b" no pattern.
///
/// "[SURFACE=]LOOK": a text that names a file as it stands is one; else the last "=" counts
/// that a look stands behind, so that names may hold "=".
LookChoice lookChoice(const std::string& text);

/// "SURFACE.SETTING=VALUE": the first "=" counts that the name of a setting stands before, so
/// that names may hold "=" and dots.
SettingChange settingChange(const std::string& text);

}  // namespace tavora::studio
