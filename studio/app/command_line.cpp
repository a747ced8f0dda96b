// The one file that includes the option parser, which is slow to compile.
#include "studio/app/command_line.h"

#include <cstdlib>
#include <deque>
#include <fmt/format.h>
#include <functional>
#include <memory>
#include <tuple>

#include <CLI/CLI.hpp>

#include "studio/app/option_values.h"
#include "studio/app/report.h"
#include "studio/app/usage_error.h"
#include "studio/scene/angle_units.h"
#include "studio/scene/nearest_name.h"

namespace tavora::studio {
namespace {

constexpr const char* kProgramText =
    "Renders glTF scenes with the Tavora cel-look shader, and edits how they look.";

constexpr const char* kProgramExamples = R"(Examples:
  tavora render model.glb -o picture.png
  tavora render model.glb -o picture.png --look comic
  tavora edit model.glb
  tavora COMMAND --help

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
  tavora render model.glb --list-cameras)";

constexpr const char* kInfoExamples = R"(Examples:
  tavora info model.glb
  tavora info model.glb --json | jq '.surfaces[].name')";

constexpr const char* kSettingsExamples = R"(Examples:
  tavora settings model.glb
  tavora settings model.glb --surface Body
  tavora settings model.glb --look comic --surface 'Body*' -o styled.glb
  tavora settings styled.glb --set Body.edgeCoverage=0.3 -o styled.glb)";

constexpr const char* kLooksExamples = R"(Examples:
  tavora looks
  tavora render model.glb -o out.png --look noir)";

constexpr const char* kEditExamples = R"(Examples:
  tavora edit model.glb
  tavora edit model.glb --look comic)";

constexpr const char* kPanelExamples = R"(Examples:
  tavora panel model.glb -o panel.png
  tavora panel model.glb --surface Body --tab 3 -o slope.png --scale 200 --theme dark)";

using Texts = std::vector<std::string>;

// Where an option's text goes once the whole line is read.
using Convert = std::function<void(const std::string& option, const std::string& text)>;

/// Shows an option whose value may be left out as people write it.
class HelpFormatter : public CLI::Formatter {
  public:
    std::string make_option_name(const CLI::Option* option, bool positional) const override {
        std::string name = Formatter::make_option_name(option, positional);
        const std::size_t value = name.find("{*}");
        return value == std::string::npos ? name : name.replace(value, 3, "[=SURFACE]");
    }
};

/// One command while the line is read: the parser's part and ours.
class Command {
  public:
    Command(CLI::App& parent, const char* name, const char* text, const char* examples)
        : app_(parent.add_subcommand(name, text)) {
        app_->footer(examples);
        app_->formatter(std::make_shared<HelpFormatter>());
        app_->allow_extras();
        app_->set_help_flag("-h,--help", "Show this help");
    }

    bool chosen() const { return app_->parsed(); }
    const CLI::App& app() const { return *app_; }

    void option(const char* name, const char* placeholder, const char* text, Convert convert) {
        values_.push_back({{}, std::move(convert), nullptr});
        Value& value = values_.back();
        value.option = app_->add_option(name, value.texts, text);
        value.option->type_name(placeholder)->expected(1)->allow_extra_args(false);
        value.option->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    }

    /// An option that may stand several times; each is converted.
    void list(const char* name, const char* placeholder, const char* text, Convert convert) {
        option(name, placeholder, text, std::move(convert));
        values_.back().option->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    }

    void flag(const char* name, bool& target, const char* text) {
        app_->add_flag(name, target, text);
    }

    CLI::App* operator->() { return app_; }

    void convert() const {
        for (const Value& value : values_) {
            for (const std::string& text : value.texts) {
                value.convert(value.option->get_name(), text);
            }
        }
    }

  private:
    struct Value {
        Texts texts;
        Convert convert;
        CLI::Option* option;
    };

    CLI::App* app_;
    std::deque<Value> values_;  // the parser keeps addresses of entries
};

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

void addScene(Command& command, std::string& scene) {
    command.option("SCENE", "", "The glTF file, .gltf or .glb", into(scene));
}

void addPlugin(Command& command, std::string& plugin) {
    command.option("--plugin", "PATH", "The shader module tavora.so or its folder", into(plugin));
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
    command.option("--crop", "X0,Y0,X1,Y1", "Render a part, in shares of the picture",
                   into(request.cropShares, cropShares));
    command.option("--crop-pixels", "X0,Y0,X1,Y1", "Render a part, in pixels",
                   into(request.cropPixels, cropPixels));
}

void addThreads(Command& command, int& target) {
    const auto threads = [](const std::string& option, const std::string& text) {
        return wholeNumber(option, text, 0, 1024);
    };
    command.option("-t,--threads", "N", "Threads; 0 for one a core (0)", into(target, threads));
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
}

void addView(Command& command, RenderRequest& request) {
    command.option("-c,--camera", "NAME|INDEX", "Camera of the scene (its first)",
                   into(request.camera));
    command.flag("--list-cameras", request.listCameras, "List the scene's cameras and stop");
    command.option("--background", "COLOUR", "#rrggbb, R,G,B, a grey, or transparent",
                   into(request.background, background));
    addLighting(command, request.lighting);
}

void addRender(Command& command, RenderRequest& request) {
    constexpr double kBackdrop[] = {0.925, 0.933, 0.945};
    request.background = Imath::V3d(kBackdrop[0], kBackdrop[1], kBackdrop[2]);
    addScene(command, request.scene);
    command.option("-o,--output", "FILE", "Picture to write, .png or .exr", into(request.output));
    addPictureSize(command, request);
    addQuality(command, request);
    addView(command, request);
    addShading(command, request.shading);
    command->add_flag("--no-shader{*}", request.shading.plain,
                      "Plain shading for all or some surfaces; repeatable");
    command->add_flag("--no-self-shadow{*}", request.withoutSelfShadow,
                      "Surfaces, all or some, that throw no shadow on themselves; repeatable");
    command.option("--progress", "KIND", "auto, none, bar or json (auto)",
                   into(request.progress, progressKind));
    addReport(command, request.report);
}

void addInfo(Command& command, InfoRequest& request) {
    addScene(command, request.scene);
    command.flag("--json", request.json, "As JSON");
    addPlugin(command, request.plugin);
    addReport(command, request.report);
}

void addSettings(Command& command, SettingsRequest& request) {
    addScene(command, request.scene);
    command.option("-o,--output", "FILE", "Store the settings in this copy of the scene",
                   into(request.output));
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
    addLighting(command, request.lighting);
    addThreads(command, request.threads);
    addReport(command, request.report);
}

void addPanel(Command& command, PanelRequest& request) {
    const auto tab = [](const std::string& option, const std::string& text) {
        return wholeNumber(option, text, 0, 5);
    };
    addScene(command, request.scene);
    command.option("-o,--output", "FILE", "Picture to write, .png", into(request.output));
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

// What the line holds beyond what the command knows.
void checkExtras(const CLI::App& app, const std::string& command) {
    const std::vector<std::string> extras = app.remaining();
    if (extras.empty()) return;
    const std::string& first = extras.front();
    if (!first.starts_with('-')) {
        throw UsageError(fmt::format("{}: \"{}\" is one argument too many; see tavora {} --help",
                                     command, first, command));
    }
    Texts known;
    for (const CLI::Option* option : app.get_options()) {
        for (const std::string& name : option->get_lnames())
            known.push_back("--" + name);
    }
    const std::string name = first.substr(0, first.find('='));
    std::string near = nearestNames(name, known);
    if (near.empty()) near = fmt::format("; see tavora {} --help", command);
    throw UsageError(fmt::format("{}: unknown option {}{}", command, name, near));
}

void readEnvironment(int& target) {
    const char* threads = std::getenv("TAVORA_THREADS");
    if (threads == nullptr || *threads == '\0') return;
    target = wholeNumber("TAVORA_THREADS", threads, 0, 1024);
}

void requireScene(const std::string& command, const std::string& scene) {
    if (!scene.empty()) return;
    throw UsageError(fmt::format("{} needs a SCENE, a .gltf or .glb file; see tavora {} --help",
                                 command, command));
}

void checkConflicts(const ReportOptions& report) {
    if (report.quiet && report.verbosity > 0) {
        throw UsageError("-v and --quiet exclude each other; give one");
    }
}

void checkConflicts(const RenderRequest& request) {
    if (request.cropShares && request.cropPixels) {
        throw UsageError("--crop and --crop-pixels exclude each other; give one");
    }
}

/// All commands of one command line.
class Parser {
  public:
    Parser() : app_(kProgramText, "tavora") {
        app_.footer(kProgramExamples);
        app_.set_help_flag("-h,--help", "Show this help");
        app_.set_version_flag("--version", "tavora " TAVORA_VERSION, "Show the version");
        app_.allow_extras();
        addRender(render_, renderRequest_);
        addInfo(info_, infoRequest_);
        addSettings(settings_, settingsRequest_);
        addLooks(looks_, looksRequest_);
        addEdit(edit_, editRequest_);
        addPanel(panel_, panelRequest_);
    }

    Request parse(int argc, char** argv) {
        try {
            app_.parse(argc, argv);
        } catch (const CLI::CallForHelp&) {
            return TextRequest{app_.help() + "\n"};
        } catch (const CLI::CallForVersion&) {
            return TextRequest{"tavora " TAVORA_VERSION "\n"};
        } catch (const CLI::ArgumentMismatch& error) {
            const std::string text = error.what();
            throw UsageError(text.substr(0, text.find(':')) +
                             " needs a value; see tavora COMMAND --help");
        } catch (const CLI::ParseError& error) {
            throw UsageError(fmt::format("{}; see tavora --help", oneLine(error.what())));
        }
        return chosenRequest();
    }

  private:
    Request chosenRequest() {
        if (render_.chosen()) {
            readEnvironment(renderRequest_.threads);
            finish(render_, "render", renderRequest_);
            checkConflicts(renderRequest_);
            return renderRequest_;
        }
        if (info_.chosen()) return finish(info_, "info", infoRequest_);
        if (settings_.chosen()) return finish(settings_, "settings", settingsRequest_);
        if (looks_.chosen()) return finish(looks_, "looks", looksRequest_);
        if (edit_.chosen()) {
            readEnvironment(editRequest_.threads);
            return finish(edit_, "edit", editRequest_);
        }
        if (panel_.chosen()) return finish(panel_, "panel", panelRequest_);
        refuseCommand();
    }

    template <class Asked>
    static Asked& finish(const Command& command, const std::string& name, Asked& request) {
        checkExtras(command.app(), name);
        command.convert();
        checkConflicts(request.report);
        // The edit window can ask for its scene.
        if constexpr (requires { request.scene; } && !std::is_same_v<Asked, EditRequest>) {
            requireScene(name, request.scene);
        }
        return request;
    }

    [[noreturn]] void refuseCommand() const {
        const std::vector<std::string> rest = app_.remaining();
        const Texts known{"render", "edit", "panel", "info", "settings", "looks"};
        if (rest.empty()) {
            throw UsageError(
                "name a command: render, edit, panel, info, settings or looks; see tavora --help");
        }
        throw UsageError(fmt::format("unknown command \"{}\"{}", rest.front(),
                                     nearestNames(rest.front(), known)));
    }

    CLI::App app_;
    RenderRequest renderRequest_;
    InfoRequest infoRequest_;
    SettingsRequest settingsRequest_;
    LooksRequest looksRequest_;
    EditRequest editRequest_;
    PanelRequest panelRequest_;
    Command render_{app_, "render", "Render a scene to a picture", kRenderExamples};
    Command edit_{app_, "edit", "Edit the shaders of a scene in a window with a live picture",
                  kEditExamples};
    Command panel_{app_, "panel", "Draw the shader's settings panel to a picture", kPanelExamples};
    Command info_{app_, "info", "List what is in a scene, and the module", kInfoExamples};
    Command settings_{app_, "settings", "Print the shader settings of a scene, or store some in it",
                      kSettingsExamples};
    Command looks_{app_, "looks", "List the looks that ship", kLooksExamples};
};

}  // namespace

Request parseCommandLine(int argc, char** argv) {
    return Parser().parse(argc, argv);
}

}  // namespace tavora::studio
