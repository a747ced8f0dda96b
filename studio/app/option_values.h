#pragma once

#include <optional>
#include <string>
#include <utility>

#include "studio/app/requests.h"

/// Values as they are typed after an option. Each function throws UsageError
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
PictureDepth depth(const std::string& option, const std::string& text);
ProgressKind progressKind(const std::string& option, const std::string& text);
Theme theme(const std::string& option, const std::string& text);

/// "[SURFACE=]FILE"; a text that names a file as it stands is one.
LookChoice lookChoice(const std::string& text);

/// "SURFACE.field=value"; surface names may hold dots.
SettingChange settingChange(const std::string& text);

}  // namespace tavora::studio
