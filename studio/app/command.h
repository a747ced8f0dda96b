#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace tavora::studio {

/// Where an option's text goes once the whole line is read; throws Fault::Usage that opens with
/// `option`, the option's name.
using Convert = std::function<void(const std::string& option, const std::string& text)>;

/// One command while the line is read: the parser's part, and what becomes of the texts.
/// Nothing is converted before convert(), so that help is shown however wrong the line is.
class Command {
  public:
    /// The options that stand before any command.
    explicit Command(CLI::App& program);
    Command(CLI::App& program, const char* name, const char* text, const char* examples);

    bool chosen() const { return app_->parsed(); }
    const std::string& name() const { return name_; }
    std::string help() const;

    /// An option of one value; the last counts. An option that has an environment variable
    /// (envname) takes its value from there when it is not on the line.
    CLI::Option* option(const char* name, const char* placeholder, const char* text,
                        Convert convert);
    /// An option that may stand several times; each is converted.
    CLI::Option* list(const char* name, const char* placeholder, const char* text, Convert convert);
    /// An option that may stand once.
    CLI::Option* single(const char* name, const char* placeholder, const char* text,
                        Convert convert);
    void flag(const char* name, bool& target, const char* text);

    CLI::App* operator->() { return app_; }

    /// Whether the command has an option of that name ("--look", "-o").
    bool knows(const std::string& option) const;

    /// Throws Error, Fault::Usage for what the line holds beyond what the command knows.
    void checkExtras() const;
    /// Throws Error, Fault::Usage that names the first required option that is not there, if one is
    /// not.
    void checkRequired() const;
    /// Throws what the conversions throw, and Fault::Usage for empty values.
    void convert() const;

  private:
    struct Value {
        std::vector<std::string> texts;
        Convert convert;
        CLI::Option* option;
        bool once;
    };

    std::string sourceOf(const Value& value) const;

    CLI::App* app_;
    std::string name_;
    std::deque<Value> values_;  // the parser keeps addresses of entries
};

/// How help and usage are laid out.
class HelpFormatter : public CLI::Formatter {
  public:
    /// Shows an option whose value may be left out as people write it.
    std::string make_option_name(const CLI::Option* option, bool positional) const override;
    std::string make_option_opts(const CLI::Option* option) const override;
    std::string make_option_desc(const CLI::Option* option) const override;
    /// What must be there first: "tavora render SCENE -o FILE [OPTIONS]".
    std::string make_usage(const CLI::App* app, std::string name) const override;
};

}  // namespace tavora::studio
