#pragma once

#include <functional>
#include <string>

#include <CLI/CLI.hpp>

/// Additions to the option parser: storing values as text, the layout of help, and messages
/// for an invalid command line.
namespace tavora::studio {

/// Stores the text of an option; throws Error that says what the text must be ("must be ...").
using Store = std::function<void(const std::string& text)>;

/// Sets up help, version, examples and layout for the program or one of its commands.
void describe(CLI::App& app, const char* examples);

/// Adds an option with one value. `store` is called for every occurrence, in order, so the last
/// one counts; without any, for the option's environment variable (envname). An Error that it
/// throws while parsing gets the option's or variable's name in front.
CLI::Option* addOption(CLI::App& app, const char* name, const char* placeholder, const char* text,
                       Store store);

/// Throws Error, Fault::Usage, for arguments that `command` does not have.
void checkExtras(const CLI::App& command);

/// Throws Error, Fault::Usage, for a command line of `command` that the parser refused.
[[noreturn]] void refuse(const CLI::App& command, const CLI::ParseError& error);

}  // namespace tavora::studio
