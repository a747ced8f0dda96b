#include "studio/app/command_line.h"

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <functional>
#include <system_error>
#include <tuple>
#include <unistd.h>

#include "studio/app/command.h"
#include "studio/app/frames.h"
#include "studio/app/help_texts.h"
#include "studio/app/option_values.h"
#include "studio/files/standard_streams.h"
#include "studio/setup/report.h"
#include "studio/util/angle_units.h"
#include "studio/util/error.h"
#include "studio/util/nearest_name.h"

namespace tavora::studio {
namespace {

Store into(std::string& target) {
    return [&target](const std::string& text) { target = text; };
}

Store into(std::vector<std::string>& target) {
    return [&target](const std::string& text) { target.push_back(text); };
}

template <class Target, class Read>
Store into(Target& target, Read read) {
    return [&target, read](const std::string& text) { target = read(text); };
}

template <class Target, class Read>
Store into(std::vector<Target>& target, Read read) {
    return [&target, read](const std::string& text) { target.push_back(read(text)); };
}

// Options that several commands have.

void addReport(CLI::App& command, ReportOptions& report) {
    command.option_defaults()->group("Messages");
    command.add_flag("-v,--verbose", report.verbosity, "Say more; twice for counts");
    command.add_flag("--quiet", report.quiet, "Say nothing but errors");
    addOption(command, "--log-file", "FILE", "Add all that is said to a file",
              into(report.logFile));
}

CLI::Option* addScene(CLI::App& command, std::string& scene) {
    return addOption(command, "SCENE", "", "the glTF file, .gltf or .glb", into(scene));
}

void addReading(CLI::App& command, ReadOptions& reading) {
    command.option_defaults()->group("Scene");
    addOption(command, "--max-memory", "SIZE",
              "Memory that the scene may take, such as 8G (half of the machine's)",
              into(reading.memory, memorySize))
        ->transform(CLI::AsSizeValue(false))
        ->envname("TAVORA_MAX_MEMORY");
    command.add_flag("--allow-outside", reading.outside,
                     "Read files outside the scene's folder, where links or \"..\" lead there");
}

CLI::Option* addOutput(CLI::App& command, const char* text, std::string& output) {
    return addOption(command, "-o,--output", "FILE", text, into(output))
        ->multi_option_policy(CLI::MultiOptionPolicy::Throw);
}

void addPlugin(CLI::App& command, std::string& plugin) {
    addOption(command, "--plugin", "PATH",
              "The shader module tavora.so or its folder, else TAVORA_PLUGIN_PATH", into(plugin));
}

void addShading(CLI::App& command, ShadingRequest& shading) {
    command.option_defaults()->group("Shading");
    addOption(command, "--look", "[SURFACE=]LOOK",
              "Put a look (name or file) on all or some surfaces; repeatable",
              into(shading.looks, lookChoice));
    addOption(command, "--set", "SURFACE.SETTING=VALUE", "Change one setting; repeatable",
              into(shading.changes, settingChange));
    addPlugin(command, shading.plugin);
}

// The commands.

void addPictureSize(CLI::App& command, RenderRequest& request) {
    command.option_defaults()->group("Picture");
    addOption(command, "-r,--resolution", "WxH", "Size of the picture (1280x720)",
              [&request](const std::string& text) {
                  std::tie(request.width, request.height) = resolution(text);
              });
    addOption(command, "--scale", "PCT", "Scale the size, in percent",
              into(request.scale, percentage));
    CLI::Option* fractions =
        addOption(command, "--crop", "X0,Y0,X1,Y1", "Render a part, in shares of the picture",
                  into(request.cropFractions, cropFractions));
    addOption(command, "--crop-pixels", "X0,Y0,X1,Y1", "Render a part, in pixels",
              into(request.cropPixels, cropPixels))
        ->excludes(fractions);
}

void addTile(CLI::App& command, RenderRequest& request) {
    addOption(command, "--tile", "I/N", "Render the Ith of N strips, for tavora merge",
              into(request.tile, tileNumber));
}

void addThreads(CLI::App& command, int& target) {
    const auto threads = [](const std::string& text) { return wholeNumber(text, 0, 1024); };
    addOption(command, "-t,--threads", "N", "Threads; 0 for one a core (0)", into(target, threads))
        ->envname("TAVORA_THREADS");
}

void addLighting(CLI::App& command, LightingOptions& lighting) {
    command.option_defaults()->group("Light");
    addOption(command, "--ambient", "COLOUR", "Light from everywhere (the scene's own)",
              into(lighting.ambient, color));
    addOption(command, "--exposure", "auto|FACTOR", "auto: the brightest sun or lamp counts as 1",
              into(lighting.exposure, exposure));
    addOption(command, "--falloff", "none|physical", "How light weakens with distance (none)",
              into(lighting.falloff, oneOf<bool>({{"none", false}, {"physical", true}})));
    constexpr double kMaxRadius = 1e9;  // metres
    const auto radius = [](const std::string& text) { return lightSize(text, kMaxRadius); };
    const auto angle = [](const std::string& text) {
        LightSize size = lightSize(text, kMaxLightDegrees);
        size.size *= kRadiansPerDegree;
        return size;
    };
    addOption(command, "--light-radius", "[LIGHT=]METRES",
              "Size of point and spot lights, which softens shadows; repeatable",
              into(lighting.radii, radius));
    addOption(command, "--light-angle", "[LIGHT=]DEGREES",
              "Size of directional lights in the sky, the same; the sun has 0.53",
              into(lighting.angles, angle));
    addOption(command, "--no-shadows", "LIGHT",
              "Lights, by name or pattern, without shadows; repeatable",
              into(lighting.withoutShadows));
}

void addProgress(CLI::App& command, ProgressKind& target) {
    addOption(command, "--progress", "KIND", "auto, none, bar, json, alf or openjd (auto)",
              into(target, oneOf<ProgressKind>({{"auto", ProgressKind::Auto},
                                                {"none", ProgressKind::None},
                                                {"bar", ProgressKind::Bar},
                                                {"json", ProgressKind::Json},
                                                {"alf", ProgressKind::Alf},
                                                {"openjd", ProgressKind::OpenJd}})));
}

void addQuality(CLI::App& command, RenderRequest& request) {
    const auto samples = [&request](const std::string& text) {
        std::tie(request.samples, request.maxSamples) = sampleCounts(text);
    };
    addOption(command, "-s,--samples", "N|LEAST..MOST",
              "Samples a pixel, or as many as it needs (4..64)", samples);
    addOption(command, "--filter", "FILTER", "box, tent or blackman-harris: crisp to soft (box)",
              into(request.filter,
                   oneOf<PixelFilter>({{"box", PixelFilter::Box},
                                       {"tent", PixelFilter::Tent},
                                       {"blackman-harris", PixelFilter::BlackmanHarris}})));
    addThreads(command, request.threads);
    addOption(command, "--depth", "DEPTH", "8 or 16 for .png, half or float for .exr",
              into(request.depth, oneOf<PictureDepth>({{"8", PictureDepth::Eight},
                                                       {"16", PictureDepth::Sixteen},
                                                       {"half", PictureDepth::Half},
                                                       {"float", PictureDepth::Float}})));
    addOption(
        command, "--format", "png|exr", "Where no suffix says so (png for -o -)",
        into(request.format, oneOf<PictureFormat::Kind>({{"png", PictureFormat::Kind::Png},
                                                         {"exr", PictureFormat::Kind::Exr}})));
}

void addBackground(CLI::App& command, std::optional<Imath::V3d>& target) {
    addOption(command, "--background", "COLOUR", "#rrggbb, R,G,B, a grey, or transparent",
              into(target, background));
}

void addView(CLI::App& command, RenderRequest& request) {
    addOption(command, "-c,--camera", "NAME|INDEX", "Camera of the scene (its first)",
              into(request.camera));
    // Listing cameras makes no picture, so it needs no output.
    const auto list = [&request, output = command.get_option("--output")] {
        request.listCameras = true;
        output->required(false);
    };
    command.add_flag_callback("--list-cameras", list, "List the scene's cameras and stop");
    addBackground(command, request.background);
    addLighting(command, request.lighting);
}

void addAnimation(CLI::App& command, AnimationRequest& animation) {
    command.option_defaults()->group("Animation");
    addOption(command, "--animation", "NAME|INDEX",
              "What plays (those that can at once); repeatable", into(animation.names));
    const auto seconds = [](const std::string& text) { return realNumber(text, -1e6, 1e6); };
    addOption(command, "--time", "SECONDS", "Show the scene at a time, not at rest",
              into(animation.seconds, seconds));
}

void addFilm(CLI::App& command, RenderRequest& request) {
    addAnimation(command, request.animation);
    addOption(command, "-f,--frames", "RANGE",
              "Frames of a film, like 1-48x2,60, at the time frame / fps",
              [&request](const std::string& text) { request.frames = frameNumbers(text); })
        ->excludes(command.get_option("--time"));
    constexpr double kMinFps = 0.001;
    const auto fps = [](const std::string& text) { return realNumber(text, kMinFps, 1e5); };
    addOption(command, "--fps", "N", "Frames a second (24)", into(request.animation.fps, fps));
    const auto hold = [](const std::string& text) { return wholeNumber(text, 1, 1000); };
    addOption(command, "--hold", "N",
              "Render every Nth frame and hold it: 2 animates \"on twos\" (1)",
              into(request.hold, hold));
    const auto shutter = [](const std::string& text) { return realNumber(text, 0, 1); };
    addOption(command, "--shutter", "SHARE",
              "Motion blur: how much of a frame's time the shutter is open, 0 to 1 (0)",
              into(request.shutter, shutter));
    addOption(command, "--existing", "HOW",
              "Files that are there: overwrite, skip (those made from the same) or fail "
              "(overwrite)",
              into(request.existing, oneOf<Existing>({{"overwrite", Existing::Overwrite},
                                                      {"skip", Existing::Skip},
                                                      {"fail", Existing::Fail}})));
    command.add_flag("--keep-going", request.keepGoing, "Go on after frames that fail");
}

void addRender(CLI::App& command, RenderRequest& request) {
    addScene(command, request.scene)->required();
    addOutput(command, "the picture to write, .png or .exr", request.output)->required();
    addPictureSize(command, request);
    addTile(command, request);
    addQuality(command, request);
    addView(command, request);
    addFilm(command, request);
    addShading(command, request.shading);
    command.add_flag("--no-shader{*}", request.shading.plain,
                     "Plain shading for all or some surfaces; repeatable");
    command.add_flag("--no-self-shadow{*}", request.withoutSelfShadow,
                     "Surfaces, all or some, that throw no shadow on themselves; repeatable");
    command.add_flag("--no-cast-shadows{*}", request.withoutCastShadows,
                     "Surfaces, all or some, that throw no shadow at all; repeatable");
    command.add_flag("--no-received-shadows{*}", request.withoutReceivedShadows,
                     "Surfaces, all or some, on which no shadow falls; repeatable");
    command.add_flag("--no-normal-map{*}", request.withoutNormalMap,
                     "Surfaces, all or some, shaded without their normal map; repeatable");
    addReading(command, request.reading);
    addReport(command, request.report);
    addProgress(command, request.progress);
}

void addInfo(CLI::App& command, InfoRequest& request) {
    addScene(command, request.scene)->required();
    command.add_flag("--json", request.json, "As JSON");
    addPlugin(command, request.plugin);
    addReading(command, request.reading);
    addReport(command, request.report);
}

void addSettings(CLI::App& command, SettingsRequest& request) {
    addScene(command, request.scene)->required();
    addOutput(command, "Store the settings in this copy of the scene", request.output);
    addOption(command, "--surface", "NAME", "Only surfaces of this name or pattern; repeatable",
              into(request.surfaces));
    addShading(command, request.shading);
    addReading(command, request.reading);
    addReport(command, request.report);
}

void addLooks(CLI::App& command, LooksRequest& request) {
    command.add_flag("--json", request.json, "As JSON");
    addReport(command, request.report);
}

void addMerge(CLI::App& command, MergeRequest& request) {
    addOption(command, "TILE", "", "the tiles of one picture", into(request.tiles))
        ->required()
        ->expected(1, CLI::detail::expected_max_vector_size)
        ->allow_extra_args()
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    addOutput(command, "the picture to write, in the format of its tiles", request.output)
        ->required();
    addReport(command, request.report);
}

void addEdit(CLI::App& command, EditRequest& request) {
    addScene(command, request.scene);
    addAnimation(command, request.animation);
    addShading(command, request.shading);
    addBackground(command, request.background);
    addLighting(command, request.lighting);
    addThreads(command, request.threads);
    addReading(command, request.reading);
    addReport(command, request.report);
}

void addPanel(CLI::App& command, PanelRequest& request) {
    const auto tab = [](const std::string& text) { return wholeNumber(text, 0, 5); };
    addScene(command, request.scene)->required();
    addOutput(command, "the picture to write, .png", request.output)->required();
    addOption(command, "--surface", "NAME", "Whose settings (the first surface)",
              into(request.surface));
    addOption(command, "--tab", "0..5", "Zones, CelSpec, Edges, Slope, InkOver or Advanced (0)",
              into(request.tab, tab));
    addOption(command, "--scale", "PCT", "Scale the panel, in percent",
              into(request.scale, percentage));
    addOption(command, "--theme", "light|dark", "Colours of the panel (light)",
              into(request.theme, oneOf<Theme>({{"light", Theme::Light}, {"dark", Theme::Dark}})));
    addShading(command, request.shading);
    addReading(command, request.reading);
    addReport(command, request.report);
}

/// Help on a command, by name.
struct HelpRequest {
    std::string command;
};

void addHelp(CLI::App& command, HelpRequest& request) {
    addOption(command, "COMMAND", "", "Which command", into(request.command));
}

// Merges message options before the command into those after it: counts add up, and the last
// log file counts.
void addBefore(ReportOptions& report, const ReportOptions& before) {
    report.verbosity += before.verbosity;
    report.quiet = report.quiet || before.quiet;
    if (report.logFile.empty()) report.logFile = before.logFile;
    if (report.quiet && report.verbosity > 0) {
        throw Error(Fault::Usage, "--quiet and --verbose exclude each other; give one");
    }
}

bool sameFile(const std::string& a, const std::string& b) {
    namespace fs = std::filesystem;
    std::error_code error;
    if (fs::equivalent(a, b, error)) return true;
    return fs::weakly_canonical(a, error) == fs::weakly_canonical(b, error);
}

// The log is appended to its file, which would damage a scene and be lost in a picture.
void checkLog(const std::string& log, const std::string& file) {
    if (log.empty() || file.empty() || !sameFile(log, file)) return;
    throw Error(
        Fault::Usage,
        fmt::format("--log-file: {} is an input or the output itself; name another file", log));
}

// Whether a command may read its scene from standard input: if it reads it only once and does
// not need its folder.
template <class RequestType>
constexpr bool kReadsStreams =
    std::is_same_v<RequestType, RenderRequest> || std::is_same_v<RequestType, InfoRequest> ||
    std::is_same_v<RequestType, SettingsRequest>;

template <class RequestType>
void checkInput(const std::string& command, const RequestType& request) {
    if (!isStream(request.scene)) return;
    if constexpr (!kReadsStreams<RequestType>) {
        throw Error(
            Fault::Usage,
            fmt::format("{} needs a scene in a file, not standard input; name one", command));
    } else if constexpr (std::is_same_v<RequestType, SettingsRequest>) {
        if (!request.output.empty()) {
            throw Error(Fault::Usage,
                        "settings -o needs a scene in a file, not standard input; name one");
        }
    }
    if (::isatty(STDIN_FILENO) == 1) {
        throw Error(Fault::Usage, fmt::format("{}: SCENE is standard input, which is a terminal; "
                                              "pipe a scene into it or name a file",
                                              command));
    }
}

template <class RequestType>
void checkOutput(const std::string& command, const RequestType& request) {
    if (!isStream(request.output) || ::isatty(STDOUT_FILENO) != 1) return;
    throw Error(
        Fault::Usage,
        fmt::format(
            "{}: -o - is standard output, which is a terminal; direct it to a file or a program",
            command));
}

void checkTiles(const MergeRequest& request) {
    for (const std::string& tile : request.tiles) {
        checkLog(request.report.logFile, tile);
        if (isStream(tile))
            throw Error(Fault::Usage, "merge: tiles must be files, not standard input; name them");
        if (!sameFile(tile, request.output)) continue;
        throw Error(Fault::Usage,
                    fmt::format("-o {}: is a tile itself; name another file", request.output));
    }
}

/// Parses a command line. An unknown name on it is reported first, since it explains more than
/// an option that is missing or excluded.
class Parser {
  public:
    Parser() {
        describe(app_, help::kProgramExamples);
        app_.require_subcommand(0, 1);
        addReport(app_, before_);
        add("render", "Render a scene to a picture", help::kRenderExamples, render_, addRender);
        add("edit", "Edit the shaders of a scene in a window with a live picture",
            help::kEditExamples, edit_, addEdit);
        add("panel", "Draw the shader's settings panel to a picture", help::kPanelExamples, panel_,
            addPanel);
        add("info", "List what is in a scene, and the module", help::kInfoExamples, info_, addInfo);
        add("settings", "Print the shader settings of a scene, or store some in it",
            help::kSettingsExamples, settings_, addSettings);
        add("merge", "Put the tiles of a picture together", help::kMergeExamples, merge_, addMerge);
        add("looks", "List the looks that ship", help::kLooksExamples, looks_, addLooks);
        add("help", "Show what a command does and takes", help::kHelpExamples, help_, addHelp);
    }

    Request parse(int argc, char** argv) {
        try {
            app_.parse(argc, argv);
        } catch (const CLI::CallForVersion& version) {
            return TextRequest{std::string(version.what()) + "\n"};
        } catch (const CLI::ParseError& error) {
            if (isHelpRequested()) return help();
            checkNames();
            refuse(*chosen(), error);
        } catch (const Error&) {
            if (isHelpRequested()) return help();
            checkNames();
            throw;
        }
        checkNames();
        return finish_();
    }

  private:
    /// Adds a command that fills `request`, which is checked once the whole line was parsed.
    template <class RequestType>
    void add(const char* name, const char* text, const char* examples, RequestType& request,
             void (*addOptions)(CLI::App&, RequestType&)) {
        CLI::App& command = *app_.add_subcommand(name, text);
        describe(command, examples);
        command.group("Commands");
        addOptions(command, request);
        // Set as the callback of the command itself: otherwise the parser would read environment
        // variables for the other commands too.
        command.parse_complete_callback([this, &command, &request] {
            finish_ = [this, &command, &request] { return finish(command, request); };
        });
    }

    template <class RequestType>
    Request finish(const CLI::App& command, RequestType& request) {
        addBefore(request.report, before_);
        if constexpr (requires { request.scene; }) {
            checkInput(command.get_name(), request);
            checkLog(request.report.logFile, request.scene);
        }
        if constexpr (requires { request.output; }) {
            checkOutput(command.get_name(), request);
            checkLog(request.report.logFile, request.output);
        }
        if constexpr (std::is_same_v<RequestType, MergeRequest>) checkTiles(request);
        return request;
    }

    Request finish(const CLI::App&, HelpRequest& request) {
        const std::string& name = request.command;
        const auto named = [&](const CLI::App* command) { return command->get_name() == name; };
        const std::vector<CLI::App*> commands = app_.get_subcommands(named);
        if (commands.empty() && !name.empty()) refuseCommand(name);
        // Not help(), which would describe the command "help" itself.
        const CLI::App* about = commands.empty() ? &app_ : commands.front();
        return TextRequest{
            app_.get_formatter()->make_help(about, name.empty() ? "tavora" : "tavora " + name,
                                            CLI::AppFormatMode::Normal) +
            "\n"};
    }

    const CLI::App* chosen() const {
        const auto parsed = [](const CLI::App* command) { return command->parsed(); };
        const std::vector<const CLI::App*> commands = app_.get_subcommands(parsed);
        return commands.empty() ? nullptr : commands.front();
    }

    // True even if the rest of the line is wrong.
    bool isHelpRequested() const {
        return app_.count("--help") > 0 || (chosen() != nullptr && chosen()->count("--help") > 0);
    }

    TextRequest help() const {
        if (chosen() == nullptr) checkBeforeCommand();
        return {app_.help() + "\n"};
    }

    // Throws Error, Fault::Usage, for an unknown name on the line.
    void checkNames() const {
        checkBeforeCommand();
        if (chosen() == nullptr) {
            throw Error(Fault::Usage, fmt::format("name a command: {}; see tavora --help",
                                                  fmt::join(commandNames(), ", ")));
        }
        checkExtras(*chosen());
    }

    void checkBeforeCommand() const {
        std::vector<std::string> extras = app_.remaining();
        std::erase(extras, "--");
        if (extras.empty()) return;
        const std::string& first = extras.front();
        const std::string option = first.substr(0, first.find('='));
        const CLI::App* command = chosen();
        if (command != nullptr &&
            (command->get_option_no_throw(option) != nullptr || !first.starts_with('-'))) {
            throw Error(Fault::Usage,
                        fmt::format("\"{}\" stands before the command; write tavora {} ... {}",
                                    first, command->get_name(), first));
        }
        if (first.starts_with('-') && first != "-") {
            throw Error(Fault::Usage, fmt::format("unknown option {}; see tavora --help", option));
        }
        refuseCommand(first);
    }

    std::vector<std::string> commandNames() const {
        std::vector<std::string> names;
        for (const CLI::App* command : app_.get_subcommands([](const CLI::App*) { return true; }))
            names.push_back(command->get_name());
        return names;
    }

    [[noreturn]] void refuseCommand(const std::string& name) const {
        std::error_code ignored;
        if (std::filesystem::is_regular_file(name, ignored)) {
            throw Error(
                Fault::Usage,
                fmt::format(
                    "\"{}\" is a file; name a command first, as in tavora render {} -o picture.png",
                    name, name));
        }
        throw Error(Fault::Usage, fmt::format("unknown command \"{}\"{}", name,
                                              nearestNames(name, commandNames())));
    }

    CLI::App app_{help::kProgramText, "tavora"};
    ReportOptions before_;
    RenderRequest render_;
    EditRequest edit_;
    PanelRequest panel_;
    InfoRequest info_;
    SettingsRequest settings_;
    LooksRequest looks_;
    MergeRequest merge_;
    HelpRequest help_;
    std::function<Request()> finish_;
};

}  // namespace

Request parseCommandLine(int argc, char** argv) {
    return Parser().parse(argc, argv);
}

}  // namespace tavora::studio
