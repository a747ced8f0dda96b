#include "studio/app/command_line.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <memory>
#include <system_error>
#include <tuple>
#include <unistd.h>

#include "studio/app/command.h"
#include "studio/app/option_values.h"
#include "studio/files/standard_streams.h"
#include "studio/setup/report.h"
#include "studio/util/angle_units.h"
#include "studio/util/error.h"
#include "studio/util/nearest_name.h"
#include "studio/util/text.h"

namespace tavora::studio {
namespace {

constexpr const char* kProgramText =
    "Renders glTF scenes with the Tavora cel-look shader, and edits how they look.";

constexpr const char* kProgramExamples = R"(Examples:
  tavora render model.glb -o picture.png
  tavora render model.glb -o picture.png --look comic
  tavora edit model.glb
  tavora help render

Exit status: 0 done, 1 internal, 2 usage, 3 scene, 4 write, 6 plug-in,
128+n stopped by signal n.
Environment: TAVORA_PLUGIN_PATH, TAVORA_DEFAULTS, TAVORA_THREADS, NO_COLOR.)";

constexpr const char* kRenderExamples = R"(Examples:
  tavora render model.glb -o picture.png
  tavora render model.glb -o picture.exr -r 1920x1080 -s 64 --depth float
  tavora render model.glb -o out.png --look comic --look 'Glass*=two-tone'
  tavora render model.glb -o out.png --set '*.edgeEnable=true' --set Body.edgeColor=#800000
  tavora render model.glb -o out.png --look noir --set 'Body.zones[1].color=#ff8000'
  tavora render model.glb -o detail.exr --crop 0.5,0,1,0.5 --background transparent
  tavora render model.glb --list-cameras
  cat model.glb | tavora render - -o - --format exr >picture.exr

SCENE - is standard input, which must hold everything; -o - is standard output.
SURFACE and LIGHT are names or patterns (* ? [a-z]). The very name comes before the
pattern; a backslash takes the next character as it is: --look 'a\=b=noir'.)";

constexpr const char* kInfoExamples = R"(Examples:
  tavora info model.glb
  tavora info model.glb --json | jq '.surfaces[].name')";

constexpr const char* kSettingsExamples = R"(Examples:
  tavora settings model.glb
  tavora settings model.glb --surface Body
  tavora settings model.glb --look comic --surface 'Body*' -o styled.glb
  tavora settings styled.glb --set Body.edgeCoverage=0.3 -o styled.glb
  tavora settings model.glb --look noir -o - | tavora render - -o noir.png

SCENE - is standard input, which can be printed only; -o - is standard output.
SURFACE and NAME are names or patterns (* ? [a-z]). The very name comes before the
pattern; a backslash takes the next character as it is: --surface 'a\*b'.)";

constexpr const char* kHelpExamples = R"(Examples:
  tavora help
  tavora help render)";

constexpr const char* kLooksExamples = R"(Examples:
  tavora looks
  tavora render model.glb -o out.png --look noir)";

constexpr const char* kEditExamples = R"(Examples:
  tavora edit model.glb
  tavora edit model.glb --look comic)";

constexpr const char* kPanelExamples = R"(Examples:
  tavora panel model.glb -o panel.png
  tavora panel model.glb --surface Body --tab 3 -o slope.png --scale 200 --theme dark)";

Convert into(std::string& target) {
    return [&target](const std::string&, const std::string& text) { target = text; };
}

template <class Target, class Read>
Convert into(Target& target, Read read) {
    return [&target, read](const std::string& option, const std::string& text) {
        target = read(option, text);
    };
}

// What every command has.

void addReport(Command& command, ReportOptions& report) {
    command->add_flag("-v,--verbose", report.verbosity, "Say more; twice for counts");
    command.flag("--quiet", report.quiet, "Say nothing but errors");
    command.option("--log-file", "FILE", "Add all that is said to a file", into(report.logFile));
}

CLI::Option* addScene(Command& command, std::string& scene) {
    return command.option("SCENE", "", "the glTF file, .gltf or .glb", into(scene));
}

CLI::Option* addOutput(Command& command, const char* text, std::string& output) {
    return command.single("-o,--output", "FILE", text, into(output));
}

void addPlugin(Command& command, std::string& plugin) {
    command.option("--plugin", "PATH",
                   "The shader module tavora.so or its folder, else TAVORA_PLUGIN_PATH",
                   into(plugin));
}

void addShading(Command& command, ShadingRequest& shading) {
    command.list("--look", "[SURFACE=]LOOK",
                 "Put a look (name or file) on all or some surfaces; repeatable",
                 [&](const std::string&, const std::string& text) {
                     shading.looks.push_back(lookChoice(text));
                 });
    command.list("--set", "SURFACE.SETTING=VALUE", "Change one setting; repeatable",
                 [&](const std::string&, const std::string& text) {
                     shading.changes.push_back(settingChange(text));
                 });
    addPlugin(command, shading.plugin);
}

// The commands.

void addPictureSize(Command& command, RenderRequest& request) {
    command.option("-r,--resolution", "WxH", "Size of the picture (1280x720)",
                   [&](const std::string& option, const std::string& text) {
                       std::tie(request.width, request.height) = resolution(option, text);
                   });
    command.option("--scale", "PCT", "Scale the size, in percent", into(request.scale, percentage));
    CLI::Option* shares =
        command.option("--crop", "X0,Y0,X1,Y1", "Render a part, in shares of the picture",
                       into(request.cropShares, cropShares));
    command
        .option("--crop-pixels", "X0,Y0,X1,Y1", "Render a part, in pixels",
                into(request.cropPixels, cropPixels))
        ->excludes(shares);
}

void addThreads(Command& command, int& target) {
    const auto threads = [](const std::string& option, const std::string& text) {
        return wholeNumber(option, text, 0, 1024);
    };
    command.option("-t,--threads", "N", "Threads; 0 for one a core (0)", into(target, threads))
        ->envname("TAVORA_THREADS");
}

void addLighting(Command& command, LightingOptions& lighting) {
    command.option("--ambient", "COLOUR", "Light from everywhere (the scene's own)",
                   into(lighting.ambient, color));
    command.option("--exposure", "auto|FACTOR", "auto: the brightest sun or lamp counts as 1",
                   into(lighting.exposure, exposure));
    command.option("--falloff", "none|physical", "How light weakens with distance (none)",
                   into(lighting.falloff, falloff));
    constexpr double kFarthest = 1e9;  // metres
    command.list("--light-radius", "[LIGHT=]METRES",
                 "Size of point and spot lights, which softens shadows; repeatable",
                 [&lighting](const std::string& option, const std::string& text) {
                     lighting.radii.push_back(lightSize(option, text, kFarthest));
                 });
    command.list("--light-angle", "[LIGHT=]DEGREES",
                 "Size of directional lights in the sky, the same; the sun has 0.53",
                 [&lighting](const std::string& option, const std::string& text) {
                     lighting.angles.push_back(lightSize(option, text, kWidestSunDegrees));
                     lighting.angles.back().size *= kRadiansPerDegree;
                 });
    command.list("--no-shadows", "LIGHT", "Lights, by name or pattern, without shadows; repeatable",
                 [&lighting](const std::string&, const std::string& text) {
                     lighting.withoutShadows.push_back(text);
                 });
}

void addQuality(Command& command, RenderRequest& request) {
    const auto samples = [&request](const std::string& option, const std::string& text) {
        std::tie(request.samples, request.mostSamples) = sampleCounts(option, text);
    };
    command.option("-s,--samples", "N|LEAST..MOST",
                   "Samples a pixel, or as many as it needs (4..64)", samples);
    command.option("--filter", "FILTER", "box, tent or blackman-harris: crisp to soft (box)",
                   into(request.filter, pixelFilter));
    addThreads(command, request.threads);
    command.option("--depth", "DEPTH", "8 or 16 for .png, half or float for .exr",
                   into(request.depth, depth));
    command.option("--format", "png|exr", "Where no suffix says so (png for -o -)",
                   into(request.format, pictureKind));
}

void addBackground(Command& command, std::optional<Imath::V3d>& target) {
    command.option("--background", "COLOUR", "#rrggbb, R,G,B, a grey, or transparent",
                   into(target, background));
}

void addView(Command& command, RenderRequest& request) {
    command.option("-c,--camera", "NAME|INDEX", "Camera of the scene (its first)",
                   into(request.camera));
    // Whoever lists cameras wants no picture.
    const auto list = [&request, app = command.operator->()] {
        request.listCameras = true;
        app->get_option("--output")->required(false);
    };
    command->add_flag_callback("--list-cameras", list, "List the scene's cameras and stop");
    addBackground(command, request.background);
    addLighting(command, request.lighting);
}

void addRender(Command& command, RenderRequest& request) {
    addScene(command, request.scene)->required();
    addOutput(command, "the picture to write, .png or .exr", request.output)->required();
    addPictureSize(command, request);
    addQuality(command, request);
    addView(command, request);
    addShading(command, request.shading);
    command->add_flag("--no-shader{*}", request.shading.plain,
                      "Plain shading for all or some surfaces; repeatable");
    command->add_flag("--no-self-shadow{*}", request.withoutSelfShadow,
                      "Surfaces, all or some, that throw no shadow on themselves; repeatable");
    command->add_flag("--no-cast-shadows{*}", request.withoutCastShadows,
                      "Surfaces, all or some, that throw no shadow at all; repeatable");
    command->add_flag("--no-received-shadows{*}", request.withoutReceivedShadows,
                      "Surfaces, all or some, on which no shadow falls; repeatable");
    command->add_flag("--no-normal-map{*}", request.withoutNormalMap,
                      "Surfaces, all or some, shaded without their normal map; repeatable");
    command.option("--progress", "KIND", "auto, none, bar or json (auto)",
                   into(request.progress, progressKind));
    addReport(command, request.report);
}

void addInfo(Command& command, InfoRequest& request) {
    addScene(command, request.scene)->required();
    command.flag("--json", request.json, "As JSON");
    addPlugin(command, request.plugin);
    addReport(command, request.report);
}

void addSettings(Command& command, SettingsRequest& request) {
    addScene(command, request.scene)->required();
    addOutput(command, "Store the settings in this copy of the scene", request.output);
    command.list(
        "--surface", "NAME", "Only surfaces of this name or pattern; repeatable",
        [&](const std::string&, const std::string& text) { request.surfaces.push_back(text); });
    addShading(command, request.shading);
    addReport(command, request.report);
}

void addLooks(Command& command, LooksRequest& request) {
    command.flag("--json", request.json, "As JSON");
    addReport(command, request.report);
}

void addEdit(Command& command, EditRequest& request) {
    addScene(command, request.scene);
    addShading(command, request.shading);
    addBackground(command, request.background);
    addLighting(command, request.lighting);
    addThreads(command, request.threads);
    addReport(command, request.report);
}

void addPanel(Command& command, PanelRequest& request) {
    const auto tab = [](const std::string& option, const std::string& text) {
        return wholeNumber(option, text, 0, 5);
    };
    addScene(command, request.scene)->required();
    addOutput(command, "the picture to write, .png", request.output)->required();
    command.option("--surface", "NAME", "Whose settings (the first surface)",
                   into(request.surface));
    command.option("--tab", "0..5", "Zones, CelSpec, Edges, Slope, InkOver or Advanced (0)",
                   into(request.tab, tab));
    command.option("--scale", "PCT", "Scale the panel, in percent",
                   into(request.scale, percentage));
    command.option("--theme", "light|dark", "Colours of the panel (light)",
                   into(request.theme, theme));
    addShading(command, request.shading);
    addReport(command, request.report);
}

// Options that stand on both sides of the command: counts add up, the last file counts.
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

// A log is added to its file, which would spoil a scene or be lost in a picture.
void checkLog(const std::string& log, const std::string& file) {
    if (log.empty() || file.empty() || !sameFile(log, file)) return;
    throw Error(
        Fault::Usage,
        fmt::format("--log-file: {} is the scene or the output itself; name another file", log));
}

// Whether a command that reads its scene once, and from wherever, may read standard input.
template <class Asked>
constexpr bool kReadsStreams =
    std::is_same_v<Asked, RenderRequest> || std::is_same_v<Asked, InfoRequest> ||
    std::is_same_v<Asked, SettingsRequest>;

template <class Asked>
void checkInput(const std::string& command, const Asked& request) {
    if (!isStream(request.scene)) return;
    if constexpr (!kReadsStreams<Asked>) {
        throw Error(
            Fault::Usage,
            fmt::format("{} needs a scene in a file, not standard input; name one", command));
    } else if constexpr (std::is_same_v<Asked, SettingsRequest>) {
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

template <class Asked>
void checkOutput(const std::string& command, const Asked& request) {
    if (!isStream(request.output) || ::isatty(STDOUT_FILENO) != 1) return;
    throw Error(
        Fault::Usage,
        fmt::format(
            "{}: -o - is standard output, which is a terminal; direct it to a file or a program",
            command));
}

/// Help on a command, by name.
struct HelpRequest {
    std::string command;
};

/// All commands of one command line.
class Parser {
  public:
    Parser() : app_(kProgramText, "tavora") {
        app_.footer(kProgramExamples);
        app_.set_help_flag("-h,--help", "Show this help");
        app_.set_version_flag("--version", "tavora " TAVORA_VERSION, "Show the version");
        app_.allow_extras();
        app_.require_subcommand(0, 1);
        addReport(before_, reportBefore_);
        addRender(render_, renderRequest_);
        addInfo(info_, infoRequest_);
        addSettings(settings_, settingsRequest_);
        addLooks(looks_, looksRequest_);
        addEdit(edit_, editRequest_);
        addPanel(panel_, panelRequest_);
        help_.option("COMMAND", "", "Which command", into(helpRequest_.command));
        for (CLI::App* app : app_.get_subcommands([](const CLI::App*) { return true; }))
            app->formatter(std::make_shared<HelpFormatter>());
        app_.formatter(std::make_shared<HelpFormatter>());
    }

    Request parse(int argc, char** argv) {
        try {
            app_.parse(argc, argv);
        } catch (const CLI::CallForHelp&) {
            if (chosen() == nullptr) checkBeforeCommand();
            return TextRequest{app_.help() + "\n"};
        } catch (const CLI::CallForVersion& version) {
            return TextRequest{std::string(version.what()) + "\n"};
        } catch (const CLI::ParseError& error) {
            refuse(error);
        }
        return chosenRequest();
    }

  private:
    Request chosenRequest() {
        const Command& command = checkedCommand();
        if (&command == &help_) return helpText();
        if (&command == &render_) return finish(command, renderRequest_);
        if (&command == &info_) return finish(command, infoRequest_);
        if (&command == &settings_) return finish(command, settingsRequest_);
        if (&command == &looks_) return finish(command, looksRequest_);
        if (&command == &edit_) return finish(command, editRequest_);
        return finish(command, panelRequest_);
    }

    template <class Asked>
    Asked& finish(const Command& command, Asked& request) {
        before_.convert();
        command.convert();
        addBefore(request.report, reportBefore_);
        if constexpr (requires { request.scene; }) {
            checkInput(command.name(), request);
            checkLog(request.report.logFile, request.scene);
        }
        if constexpr (requires { request.output; }) {
            checkOutput(command.name(), request);
            checkLog(request.report.logFile, request.output);
        }
        return request;
    }

    TextRequest helpText() {
        help_.convert();
        const std::string& name = helpRequest_.command;
        if (name.empty()) {
            // Not help(), which would tell of the command chosen.
            return {app_.get_formatter()->make_help(&app_, "tavora", CLI::AppFormatMode::Normal) +
                    "\n"};
        }
        for (const Command* command : commands_) {
            if (command->name() == name) return {command->help() + "\n"};
        }
        refuseCommand(name);
    }

    const Command* chosen() const {
        const auto found = std::find_if(commands_.begin(), commands_.end(),
                                        [](const Command* command) { return command->chosen(); });
        return found == commands_.end() ? nullptr : *found;
    }

    // The command, once what is on the line is known to have a meaning.
    const Command& checkedCommand() const {
        checkBeforeCommand();
        const Command* command = chosen();
        if (command == nullptr) {
            throw Error(Fault::Usage, fmt::format("name a command: {}; see tavora --help",
                                                  fmt::join(commandNames(), ", ")));
        }
        command->checkExtras();
        return *command;
    }

    void checkBeforeCommand() const {
        std::vector<std::string> extras = app_.remaining();
        std::erase(extras, "--");
        if (extras.empty()) return;
        const std::string& first = extras.front();
        const std::string option = first.substr(0, first.find('='));
        const Command* command = chosen();
        if (command != nullptr && (command->knows(option) || !first.starts_with('-'))) {
            throw Error(Fault::Usage,
                        fmt::format("\"{}\" stands before the command; write tavora {} ... {}",
                                    first, command->name(), first));
        }
        if (first.starts_with('-') && first != "-") {
            throw Error(Fault::Usage, fmt::format("unknown option {}; see tavora --help", option));
        }
        refuseCommand(first);
    }

    std::vector<std::string> commandNames() const {
        std::vector<std::string> names;
        for (const Command* command : commands_)
            names.push_back(command->name());
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

    // What is said of a line that the library refused. A slip in a name explains more than
    // what is missing for it.
    [[noreturn]] void refuse(const CLI::ParseError& error) const {
        const Command& command = checkedCommand();
        const std::string text = oneLine(error.what());
        if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
            throw Error(Fault::Usage, fmt::format("{} needs a value; see tavora {} --help",
                                                  text.substr(0, text.find(':')), command.name()));
        }
        if (dynamic_cast<const CLI::ConversionError*>(&error) != nullptr) {
            // Options keep their texts; only a flag is converted, from what stands behind "=".
            throw Error(Fault::Usage, fmt::format("{}: a flag takes no value; see tavora {} --help",
                                                  text, command.name()));
        }
        if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr) command.checkRequired();
        throw Error(Fault::Usage, fmt::format("{}; see tavora {} --help", text, command.name()));
    }

    CLI::App app_;
    ReportOptions reportBefore_;
    RenderRequest renderRequest_;
    InfoRequest infoRequest_;
    SettingsRequest settingsRequest_;
    LooksRequest looksRequest_;
    EditRequest editRequest_;
    PanelRequest panelRequest_;
    HelpRequest helpRequest_;
    Command before_{app_};
    Command render_{app_, "render", "Render a scene to a picture", kRenderExamples};
    Command edit_{app_, "edit", "Edit the shaders of a scene in a window with a live picture",
                  kEditExamples};
    Command panel_{app_, "panel", "Draw the shader's settings panel to a picture", kPanelExamples};
    Command info_{app_, "info", "List what is in a scene, and the module", kInfoExamples};
    Command settings_{app_, "settings", "Print the shader settings of a scene, or store some in it",
                      kSettingsExamples};
    Command looks_{app_, "looks", "List the looks that ship", kLooksExamples};
    Command help_{app_, "help", "Show what a command does and takes", kHelpExamples};
    const std::array<const Command*, 7> commands_{&render_,   &edit_,  &panel_, &info_,
                                                  &settings_, &looks_, &help_};
};

}  // namespace

Request parseCommandLine(int argc, char** argv) {
    return Parser().parse(argc, argv);
}

}  // namespace tavora::studio
