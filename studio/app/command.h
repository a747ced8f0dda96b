#pragma once

#include <functional>
#include <string>

#include <CLI/CLI.hpp>

/// What the option parser leaves to its user: where texts go, and what is said of a line that
/// it does not take.
namespace tavora::studio {

/// Takes the text of an option; throws Error that says what the text must be ("must be ...").
using Store = std::function<void(const std::string& text)>;

/// Help, version, examples and layout of the program or of one of its commands.
void describe(CLI::App& app, const char* examples);

/// An option of one value, of which the last on the line counts; `store` is called for each in
/// their order. Where it is not on the line, its environment variable (envname) stands in.
/// Parsing throws Error, Fault::Usage that opens with whichever of the two was wrong.
CLI::Option* addOption(CLI::App& app, const char* name, const char* placeholder, const char* text,
                       Store store);

/// Throws Error, Fault::Usage for what the line holds beyond what `command` knows.
void checkExtras(const CLI::App& command);

/// Throws Error, Fault::Usage for a line of `command` that the parser refused.
[[noreturn]] void refuse(const CLI::App& command, const CLI::ParseError& error);

}  // namespace tavora::studio
