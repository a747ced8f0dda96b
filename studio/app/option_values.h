#pragma once

#include <optional>
#include <string>
#include <utility>

#include "studio/app/requests.h"

/// Values as they are typed after an option. Each function throws Fault::Usage
/// that opens with `option`.
namespace tavora::studio {

int wholeNumber(const std::string& option, const std::string& text, int min, int max);
double realNumber(const std::string& option, const std::string& text, double min, double max);

/// "16", or "4..64" for as many as a pixel needs: the least, and the most or 0.
std::pair<int, int> sampleCounts(const std::string& option, const std::string& text);

/// "1280x720"
std::pair<int, int> resolution(const std::string& option, const std::string& text);

/// "50" or "50%", as a factor.
double percentage(const std::string& option, const std::string& text);

/// "x0,y0,x1,y1", shares of the picture from its top left corner.
CropShares cropShares(const std::string& option, const std::string& text);

/// "x0,y0,x1,y1" in pixels, the last two excluded.
PixelBox cropPixels(const std::string& option, const std::string& text);

/// "#rrggbb", "r,g,b" from 0 to 1, one number for a grey, or black, grey, white.
Imath::V3d color(const std::string& option, const std::string& text);

/// A colour, or none for "transparent".
std::optional<Imath::V3d> background(const std::string& option, const std::string& text);

/// A factor above 0, or none for "auto".
std::optional<double> exposure(const std::string& option, const std::string& text);

/// "0.2" for all lights, or "LIGHT=0.2", from 0 to `most`. Names may hold "=".
LightSize lightSize(const std::string& option, const std::string& text, double most);

bool falloff(const std::string& option, const std::string& text);
PixelFilter pixelFilter(const std::string& option, const std::string& text);
std::optional<PictureFormat::Kind> pictureKind(const std::string& option, const std::string& text);
PictureDepth depth(const std::string& option, const std::string& text);
ProgressKind progressKind(const std::string& option, const std::string& text);
Theme theme(const std::string& option, const std::string& text);

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
