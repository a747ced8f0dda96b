#include "studio/app/command.h"

#include <algorithm>
#include <fmt/format.h>
#include <memory>

#include "studio/setup/report.h"
#include "studio/util/error.h"
#include "studio/util/nearest_name.h"

namespace tavora::studio {
namespace {

using Texts = std::vector<std::string>;

constexpr const char* kOptionalValue = "{*}";

Texts namesOf(const CLI::App& app) {
    Texts names;
    for (const CLI::Option* option : app.get_options()) {
        for (const std::string& name : option->get_lnames())
            names.push_back("--" + name);
    }
    return names;
}

// "-o FILE" where there is a short name, else "--output FILE", or the name of what stands alone.
std::string usageOf(const CLI::Option& option) {
    if (option.get_positional()) return option.get_name(true, false);
    const std::string name = option.get_snames().empty() ? "--" + option.get_lnames().front()
                                                         : "-" + option.get_snames().front();
    return name + " " + option.get_type_name();
}

// A surface behind a flag that takes its value only after "=" is an easy slip.
std::string valueHint(const CLI::App& app, const std::string& extra) {
    for (const CLI::Option* option : app.get_options()) {
        const Texts& given = option->results();
        const bool alone = std::find(given.begin(), given.end(), "*") != given.end();
        if (option->get_expected_min() > 0 || !alone) continue;
        return fmt::format("; for one surface write {}={}", option->get_name(), extra);
    }
    return {};
}

}  // namespace

Command::Command(CLI::App& program) : app_(&program) {}

Command::Command(CLI::App& program, const char* name, const char* text, const char* examples)
    : app_(program.add_subcommand(name, text)), name_(name) {
    app_->footer(examples);
    app_->group("Commands");
    app_->allow_extras();
    app_->set_help_flag("-h,--help", "Show this help");
    app_->set_version_flag("--version", "tavora " TAVORA_VERSION, "Show the version");
}

std::string Command::help() const {
    return app_->help("tavora");
}

CLI::Option* Command::option(const char* name, const char* placeholder, const char* text,
                             Convert convert) {
    values_.push_back({{}, std::move(convert), nullptr, false});
    Value& value = values_.back();
    value.option = app_->add_option(name, value.texts, text);
    value.option->type_name(placeholder)->expected(1)->allow_extra_args(false);
    return value.option->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
}

CLI::Option* Command::list(const char* name, const char* placeholder, const char* text,
                           Convert convert) {
    return option(name, placeholder, text, std::move(convert))
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

CLI::Option* Command::single(const char* name, const char* placeholder, const char* text,
                             Convert convert) {
    CLI::Option* made = list(name, placeholder, text, std::move(convert));
    values_.back().once = true;
    return made;
}

void Command::flag(const char* name, bool& target, const char* text) {
    app_->add_flag(name, target, text);
}

bool Command::knows(const std::string& option) const {
    return app_->get_option_no_throw(option) != nullptr;
}

void Command::checkExtras() const {
    Texts extras = app_->remaining();
    std::erase(extras, "--");
    if (extras.empty()) return;
    const std::string& first = extras.front();
    if (!first.starts_with('-') || first == "-") {
        std::string hint = valueHint(*app_, first);
        if (hint.empty()) hint = fmt::format("; see tavora {} --help", name_);
        throw Error(Fault::Usage,
                    fmt::format("{}: \"{}\" is one argument too many{}", name_, first, hint));
    }
    const std::string name = first.substr(0, first.find('='));
    std::string near = nearestNames(name, namesOf(*app_));
    if (near.empty()) near = fmt::format("; see tavora {} --help", name_);
    throw Error(Fault::Usage, fmt::format("{}: unknown option {}{}", name_, name, near));
}

void Command::checkRequired() const {
    for (const CLI::Option* option : app_->get_options()) {
        if (!option->get_required() || option->count() > 0) continue;
        throw Error(Fault::Usage, fmt::format("{} needs {}: {}; see tavora {} --help", name_,
                                              usageOf(*option), option->get_description(), name_));
    }
}

std::string Command::sourceOf(const Value& value) const {
    const std::vector<CLI::Option*>& typed = app_->parse_order();
    const bool onLine = std::find(typed.begin(), typed.end(), value.option) != typed.end();
    return onLine ? value.option->get_name() : value.option->get_envname();
}

void Command::convert() const {
    for (const Value& value : values_) {
        const std::string source = value.texts.empty() ? std::string() : sourceOf(value);
        if (value.once && value.texts.size() > 1) {
            throw Error(Fault::Usage, fmt::format("{} stands there {} times; give one", source,
                                                  value.texts.size()));
        }
        for (const std::string& text : value.texts) {
            if (text.empty()) {
                throw Error(Fault::Usage,
                            fmt::format("{} is empty; give it a value or leave it out", source));
            }
            // "-o=a.png" is no spelling of "--output=a.png".
            if (text.front() == '=' && !value.option->get_snames().empty()) {
                throw Error(
                    Fault::Usage,
                    fmt::format("{} must not begin with \"=\", as \"{}\" does; write "
                                "-{} {}",
                                source, text, value.option->get_snames().front(), text.substr(1)));
            }
            value.convert(source, text);
        }
    }
}

std::string HelpFormatter::make_option_name(const CLI::Option* option, bool positional) const {
    std::string name = Formatter::make_option_name(option, positional);
    const std::size_t value = name.find(kOptionalValue);
    return value == std::string::npos ? name : name.replace(value, 3, "[=SURFACE]");
}

std::string HelpFormatter::make_option_opts(const CLI::Option* option) const {
    return option->get_type_size() == 0 || option->get_type_name().empty()
               ? std::string()
               : " " + option->get_type_name();
}

std::string HelpFormatter::make_option_desc(const CLI::Option* option) const {
    std::string text = option->get_description();
    if (!option->get_envname().empty()) text += ", else " + option->get_envname();
    if (option->get_required()) text += " (required)";
    return text;
}

std::string HelpFormatter::make_usage(const CLI::App* app, std::string name) const {
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

}  // namespace tavora::studio
