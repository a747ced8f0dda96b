#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "studio/app/requests.h"

/// Conversions of the values of options. Each function throws Error, Fault::Usage, that says what
/// the text must be, without the option's name. The parser's own conversions are not used: they
/// accept octal and hexadecimal numbers, and NaN in any range.
namespace tavora::studio {

/// A number from `min` to `max`.
int wholeNumber(const std::string& text, int min, int max);
double realNumber(const std::string& text, double min, double max);

/// "16", or "4..64" for as many as a pixel needs. Returns the minimum, and the maximum or 0.
std::pair<int, int> sampleCounts(const std::string& text);

/// "1280x720"
std::pair<int, int> resolution(const std::string& text);

/// Bytes, at least a million, so that a forgotten unit ("8") is an error.
std::uint64_t memorySize(const std::string& text);

/// "50" or "50%", as a factor.
double percentage(const std::string& text);

/// "x0,y0,x1,y1", fractions of the picture's size from its top left corner.
CropFractions cropFractions(const std::string& text);

/// "x0,y0,x1,y1" in pixels, the last two excluded.
PixelBox cropPixels(const std::string& text);

/// "2/6", counted from 1.
TileNumber tileNumber(const std::string& text);

/// "#rrggbb", "r,g,b" from 0 to 1, one number for a grey, or black, grey, white.
Imath::V3d color(const std::string& text);

/// A colour, display-referred; empty for "transparent".
std::optional<Imath::V3d> background(const std::string& text);

/// A factor above 0; empty for "auto".
std::optional<double> exposure(const std::string& text);

/// "0.2" for all lights, or "LIGHT=0.2", from 0 to `max`. Names may contain "=".
LightSize lightSize(const std::string& text, double max);

/// Throws Error, Fault::Usage: "must be `wanted`, not ...".
[[noreturn]] void refuse(const std::string& wanted, const std::string& text);

/// A function that converts one of some names.
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

/// "[SURFACE=]LOOK". Names may contain "=": a text that is the name of an existing file is a
/// look; otherwise the separator is the last "=" with an existing look after it. In names of
/// surfaces a backslash escapes the next character: "a\=b" is the name a=b, and "a\*b" is not a
/// pattern.
LookChoice lookChoice(const std::string& text);

/// "SURFACE.SETTING=VALUE". Names may contain "=" and dots: the separator is the first "=" with
/// the name of a setting before it. A backslash escapes as in lookChoice().
SettingChange settingChange(const std::string& text);

}  // namespace tavora::studio
