#pragma once

#include <ImathVec.h>
#include <array>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "studio/render/image/picture.h"
#include "studio/render/image/picture_file.h"
#include "studio/render/image/picture_tiles.h"
#include "studio/render/sampling/pixel_filter.h"
#include "studio/scene/lighting/light_set.h"
#include "studio/scene/read_options.h"
#include "studio/setup/report.h"
#include "studio/setup/shading_request.h"

/// What the user asked for: the command line read and checked, as plain data.
namespace tavora::studio {

enum class ProgressKind { Auto, None, Bar, Json, Alf, OpenJd };

/// What becomes of a file that is there already.
enum class Existing {
    Overwrite,
    Skip,  ///< it stays if it is complete and made from the same; else it is written anew
    Fail   ///< nothing is rendered
};

/// What plays, and when it is shown.
struct AnimationRequest {
    std::vector<std::string> names;  ///< names, patterns or indexes; empty: what can at once
    std::optional<double> seconds;   ///< of a still; empty: at rest, unless something is named
    double fps = 24;                 ///< frame f is at the time f / fps

    bool isAsked() const { return seconds || !names.empty(); }
};

/// Left, top, right, bottom as shares of the picture, 0..1.
using CropShares = std::array<double, 4>;

/// What lies behind a scene unless something else is asked for; display-referred.
inline const Imath::V3d kUsualBackground{0.925, 0.933, 0.945};

struct RenderRequest {
    ReportOptions report;
    ReadOptions reading;
    std::string scene;   ///< "-": standard input
    std::string output;  ///< "-": standard output
    int width = 1280;
    int height = 720;
    double scale = 1;
    std::optional<CropShares> cropShares;
    std::optional<PixelBox> cropPixels;
    std::optional<TileNumber> tile;  ///< of the picture, or of its crop
    int samples = 4;                 ///< a pixel, at least
    int maxSamples = 64;            ///< where samples differ; 0: `samples` everywhere
    PixelFilter filter = PixelFilter::Box;
    int threads = 0;  ///< 0: one a core
    std::string camera;
    bool listCameras = false;
    ShadingRequest shading;
    std::optional<Imath::V3d> background = kUsualBackground;  ///< empty: transparent
    LightingOptions lighting;
    /// Names or globs of surfaces that throw no shadow on themselves.
    std::vector<std::string> withoutSelfShadow;
    std::vector<std::string> withoutCastShadows;      ///< that throw none at all
    std::vector<std::string> withoutReceivedShadows;  ///< on which none falls
    std::vector<std::string> withoutNormalMap;        ///< shaded without their normal map
    std::optional<PictureFormat::Kind> format;        ///< empty: as the output's suffix says
    PictureDepth depth = PictureDepth::Default;
    ProgressKind progress = ProgressKind::Auto;
    AnimationRequest animation;
    std::vector<int> frames;  ///< in the order to render; empty: a still
    int hold = 1;             ///< frames that show the picture of the one before, and it
    double shutter = 0;       ///< share of a frame's time that the shutter is open; 0: no blur
    Existing existing = Existing::Overwrite;
    bool keepGoing = false;  ///< past frames that fail
};

struct InfoRequest {
    ReportOptions report;
    ReadOptions reading;
    std::string scene;
    std::string plugin;
    bool json = false;
};

struct SettingsRequest {
    ReportOptions report;
    ReadOptions reading;
    std::string scene;
    std::string output;                 ///< empty: print; "-": the scene to standard output
    std::vector<std::string> surfaces;  ///< names or globs; empty: all
    ShadingRequest shading;
};

struct LooksRequest {
    ReportOptions report;
    bool json = false;
};

/// Tiles to be put together.
struct MergeRequest {
    ReportOptions report;
    std::vector<std::string> tiles;
    std::string output;
};

/// The edit window.
struct EditRequest {
    ReportOptions report;
    ReadOptions reading;
    std::string scene;                                        ///< empty: the window asks
    int threads = 0;                                          ///< 0: one a core
    std::optional<Imath::V3d> background = kUsualBackground;  ///< empty: transparent
    ShadingRequest shading;
    LightingOptions lighting;
    AnimationRequest animation;
};

enum class Theme { Light, Dark };

/// The shader's panel as a picture.
struct PanelRequest {
    ReportOptions report;
    ReadOptions reading;
    std::string scene;
    std::string output;
    std::string surface;  ///< empty: the first
    int tab = 0;          ///< 0..5
    double scale = 1;     ///< device pixels a panel pixel
    Theme theme = Theme::Light;
    ShadingRequest shading;
};

/// --help and --version: nothing but text.
struct TextRequest {
    std::string text;
};

using Request = std::variant<TextRequest, RenderRequest, InfoRequest, SettingsRequest, LooksRequest,
                             MergeRequest, EditRequest, PanelRequest>;

}  // namespace tavora::studio
