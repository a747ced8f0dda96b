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

/// The requests of the command line, parsed and checked, as plain data.
namespace tavora::studio {

enum class ProgressKind { Auto, None, Bar, Json, Alf, OpenJd };

/// What to do with files that already exist.
enum class Existing {
    Overwrite,
    Skip,  ///< keep a file that is complete and has the same metadata; overwrite others
    Fail   ///< render nothing
};

/// Which animations to play, and the time to show.
struct AnimationRequest {
    /// Names, patterns or indices; empty: those that can play together.
    std::vector<std::string> names;
    std::optional<double> seconds;  ///< of a still; empty: rest pose, or 0 if there are names
    double fps = 24;                ///< frame f is at the time f / fps

    bool isGiven() const { return seconds || !names.empty(); }
};

/// Left, top, right and bottom as fractions of the picture's size, 0..1.
using CropFractions = std::array<double, 4>;

/// The background of a scene unless another is requested; display-referred.
inline const Imath::V3d kDefaultBackground{0.925, 0.933, 0.945};

struct RenderRequest {
    ReportOptions report;
    ReadOptions reading;
    std::string scene;   ///< "-": standard input
    std::string output;  ///< "-": standard output
    int width = 1280;
    int height = 720;
    double scale = 1;
    std::optional<CropFractions> cropFractions;
    std::optional<PixelBox> cropPixels;
    std::optional<TileNumber> tile;  ///< of the picture, or of its crop
    int samples = 4;                 ///< of every pixel
    int maxSamples = 64;             ///< of pixels whose samples differ; 0: `samples` everywhere
    PixelFilter filter = PixelFilter::Box;
    int threads = 0;     ///< 0: one for each core
    std::string camera;  ///< name or index; empty: see chooseCamera()
    bool listCameras = false;
    ShadingRequest shading;
    std::optional<Imath::V3d> background = kDefaultBackground;  ///< empty: transparent
    LightingOptions lighting;
    /// Names or globs of surfaces that cast no shadow on themselves.
    std::vector<std::string> withoutSelfShadow;
    std::vector<std::string> withoutCastShadows;      ///< that cast no shadows at all
    std::vector<std::string> withoutReceivedShadows;  ///< on which no shadows fall
    std::vector<std::string> withoutNormalMap;        ///< shaded without their normal map
    std::optional<PictureFormat::Kind> format;        ///< empty: by the output's suffix
    PictureDepth depth = PictureDepth::Default;
    ProgressKind progress = ProgressKind::Auto;
    AnimationRequest animation;
    std::vector<int> frames;  ///< in the order to render; empty: a still
    int hold = 1;             ///< how many successive frames show the same picture
    double shutter = 0;       ///< fraction of a frame's time with open shutter; 0: no blur
    Existing existing = Existing::Overwrite;
    bool keepGoing = false;  ///< continue after frames that fail
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

/// Merges the tiles of a picture.
struct MergeRequest {
    ReportOptions report;
    std::vector<std::string> tiles;
    std::string output;
};

/// The edit window.
struct EditRequest {
    ReportOptions report;
    ReadOptions reading;
    std::string scene;                                          ///< empty: the window asks for one
    int threads = 0;                                            ///< 0: one for each core
    std::optional<Imath::V3d> background = kDefaultBackground;  ///< empty: transparent
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
    double scale = 1;     ///< device pixels for each pixel of the panel
    Theme theme = Theme::Light;
    ShadingRequest shading;
};

/// --help and --version: only writes a text.
struct TextRequest {
    std::string text;
};

using Request = std::variant<TextRequest, RenderRequest, InfoRequest, SettingsRequest, LooksRequest,
                             MergeRequest, EditRequest, PanelRequest>;

}  // namespace tavora::studio
