#include "studio/app/command.h"

#include <algorithm>
#include <fmt/format.h>
#include <memory>
#include <vector>

#include "studio/util/error.h"
#include "studio/util/nearest_name.h"
#include "studio/util/text.h"

namespace tavora::studio {
namespace {

using Texts = std::vector<std::string>;

constexpr const char* kOptionalValue = "{*}";

// "-o FILE" for an option with a short name, else "--output FILE"; the name of a positional.
std::string usageOf(const CLI::Option& option) {
    if (option.get_positional()) return option.get_name(true, false);
    const std::string name = option.get_snames().empty() ? "--" + option.get_lnames().front()
                                                         : "-" + option.get_snames().front();
    return name + " " + option.get_type_name();
}

/// The layout of help and usage.
class HelpFormatter : public CLI::Formatter {
  public:
    /// Shows an option with an optional value in the form that people write.
    std::string make_option_name(const CLI::Option* option, bool positional) const override {
        std::string name = Formatter::make_option_name(option, positional);
        const std::size_t value = name.find(kOptionalValue);
        return value == std::string::npos ? name : name.replace(value, 3, "[=SURFACE]");
    }

    std::string make_option_opts(const CLI::Option* option) const override {
        return option->get_type_name().empty() ? std::string() : " " + option->get_type_name();
    }

    std::string make_option_desc(const CLI::Option* option) const override {
        std::string text = option->get_description();
        if (!option->get_envname().empty()) text += ", else " + option->get_envname();
        if (option->get_required()) text += " (required)";
        return text;
    }

    /// Leaves one empty line between groups of options.
    std::string make_help(const CLI::App* app, std::string name,
                          CLI::AppFormatMode mode) const override {
        std::string text = Formatter::make_help(app, std::move(name), mode);
        for (std::size_t gap = 0; (gap = text.find("\n\n\n", gap)) != std::string::npos;)
            text.erase(gap, 1);
        return text;
    }

    /// Required arguments come first: "tavora render SCENE -o FILE [OPTIONS]".
    std::string make_usage(const CLI::App* app, std::string name) const override {
        std::string usage = "Usage: " + name;
        std::string optional;
        for (const CLI::Option* option : app->get_options()) {
            if (option->get_required()) {
                usage += " " + usageOf(*option);
            } else if (option->get_positional()) {
                optional += fmt::format(" [{}]", option->get_name(true, false));
            }
        }
        const bool commands = !app->get_subcommands([](const CLI::App*) { return true; }).empty();
        return usage + optional + " [OPTIONS]" + (commands ? " COMMAND ..." : "") + "\n";
    }
};

// A hint for a surface that was written after a flag that takes its value only after "=".
std::string valueHint(const CLI::App& app, const std::string& extra) {
    for (const CLI::Option* option : app.get_options()) {
        const Texts& given = option->results();
        const bool alone = std::find(given.begin(), given.end(), "*") != given.end();
        if (option->get_expected_min() > 0 || !alone) continue;
        return fmt::format("; for one surface write {}={}", option->get_name(), extra);
    }
    return {};
}

std::string seeHelp(const CLI::App& command) {
    return fmt::format("; see tavora {} --help", command.get_name());
}

// Refuses an empty value and "-o=a.png", which does not mean "--output=a.png".
void checkSpelling(const CLI::Option& option, const std::string& source, const std::string& text) {
    if (text.empty()) {
        throw Error(Fault::Usage, source + " is empty; give it a value or leave it out");
    }
    if (text.front() != '=' || option.get_snames().empty()) return;
    throw Error(Fault::Usage,
                fmt::format("{} must not begin with \"=\", as \"{}\" does; write -{} {}", source,
                            text, option.get_snames().front(), text.substr(1)));
}

std::string missing(const CLI::App& command) {
    for (const CLI::Option* option : command.get_options()) {
        if (!option->get_required() || option->count() > 0) continue;
        return fmt::format("{} needs {}: {}{}", command.get_name(), usageOf(*option),
                           option->get_description(), seeHelp(command));
    }
    return {};
}

// The message for an option without a value, or one that is given too often.
std::string miscounted(const CLI::App& command, const std::string& name) {
    const CLI::Option* option = command.get_option_no_throw(name);
    if (option == nullptr || option->count() < 2) return name + " needs a value" + seeHelp(command);
    return fmt::format("{} stands there {} times; give one", name, option->count());
}

}  // namespace

void describe(CLI::App& app, const char* examples) {
    app.formatter(std::make_shared<HelpFormatter>());
    app.footer(examples);
    app.allow_extras();
    app.option_defaults()->group("Options");
    app.set_help_flag("-h,--help", "Show this help");
    app.set_version_flag("--version", "tavora " TAVORA_VERSION, "Show the version");
}

CLI::Option* addOption(CLI::App& app, const char* name, const char* placeholder, const char* text,
                       Store store) {
    CLI::Option* option = app.add_option(name)->description(text)->type_name(placeholder);
    const auto take = [&app, option, store = std::move(store)](const std::string& given) {
        const std::vector<CLI::Option*>& typed = app.parse_order();
        const bool onLine = std::find(typed.begin(), typed.end(), option) != typed.end();
        const std::string source = onLine ? option->get_name() : option->get_envname();
        checkSpelling(*option, source, given);
        try {
            store(given);
        } catch (const Error& error) {
            throw Error(error.fault(), fmt::format("{} {}", source, error.what()));
        }
    };
    return option->multi_option_policy(CLI::MultiOptionPolicy::TakeLast)->each(take);
}

void checkExtras(const CLI::App& command) {
    Texts extras = command.remaining();
    std::erase(extras, "--");
    if (extras.empty()) return;
    const std::string& first = extras.front();
    if (!first.starts_with('-') || first == "-") {
        const std::string hint = valueHint(command, first);
        throw Error(Fault::Usage,
                    fmt::format("{}: \"{}\" is one argument too many{}", command.get_name(), first,
                                hint.empty() ? seeHelp(command) : hint));
    }
    Texts names;
    for (const CLI::Option* option : command.get_options()) {
        if (option->nonpositional()) names.push_back(option->get_name());
    }
    const std::string name = first.substr(0, first.find('='));
    const std::string near = nearestNames(name, names);
    throw Error(Fault::Usage, fmt::format("{}: unknown option {}{}", command.get_name(), name,
                                          near.empty() ? seeHelp(command) : near));
}

void refuse(const CLI::App& command, const CLI::ParseError& error) {
    const std::string text = oneLine(error.what());
    const std::string name = text.substr(0, text.find(':'));
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
        throw Error(Fault::Usage, miscounted(command, name));
    }
    if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr) {
        throw Error(Fault::Usage, missing(command));
    }
    // Only flags are converted by the parser, from the text after "=".
    const bool flag = dynamic_cast<const CLI::ConversionError*>(&error) != nullptr;
    throw Error(Fault::Usage, text + (flag ? ": a flag takes no value" : "") + seeHelp(command));
}

}  // namespace tavora::studio
