#include "studio/scene/settings/look_writing.h"

#include <fmt/format.h>
#include <string>

#include "studio/files/whole_file.h"
#include "studio/scene/settings/look.h"
#include "studio/scene/settings/stored_block.h"

namespace tavora::studio {
namespace {

std::string textOf(const Settings& value) {
    return value.dump(-1, ' ', false, Settings::error_handler_t::replace);
}

// Writes one zone a line, as a person would.
std::string listText(const Settings& zones) {
    std::string text;
    for (const Settings& zone : zones)
        text += fmt::format("{}      {}", text.empty() ? "" : ",\n", textOf(zone));
    return text.empty() ? "[]" : fmt::format("[\n{}\n    ]", text);
}

std::string settingsText(const Settings& settings) {
    std::string text;
    for (const auto& [name, value] : settings.items()) {
        if (name.starts_with("reserved")) continue;  // has no meaning
        const bool zones = value.is_array() && !value.empty() && value.front().is_object();
        text += fmt::format("{}    {}: {}", text.empty() ? "" : ",\n", textOf(name),
                            zones ? listText(value) : textOf(value));
    }
    return text;
}

}  // namespace

void writeLook(const StateBlock& block, const std::filesystem::path& file) {
    const std::string text = fmt::format(
        "{{\n  \"tavora\": \"look\",\n  \"version\": 1,\n  \"name\": {},\n  \"description\": "
        "\"\",\n  \"settings\": {{\n{}\n  }}\n}}\n",
        textOf(file.stem().string()), settingsText(settingsOf(block)));
    parseLook(text, file.string());  // so that no file is written that cannot be read
    writeWholeFile(file, text);
}

}  // namespace tavora::studio
