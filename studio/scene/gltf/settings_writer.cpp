#include "studio/scene/gltf/settings_writer.h"

#include <algorithm>
#include <cctype>
#include <fmt/format.h>

#include "studio/files/standard_streams.h"
#include "studio/files/whole_file.h"
#include "studio/scene/gltf/container.h"
#include "studio/scene/settings/shader_extras.h"
#include "studio/util/error.h"
#include "studio/util/json_text.h"
#include "studio/util/text.h"

namespace tavora::studio {
namespace fs = std::filesystem;
namespace {

using Json = nlohmann::ordered_json;

constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";

std::string lowerSuffix(const fs::path& file) {
    std::string suffix = file.extension();
    std::transform(suffix.begin(), suffix.end(), suffix.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return suffix;
}

void checkSuffix(const fs::path& input, const fs::path& output) {
    if (isStream(output) || lowerSuffix(input) == lowerSuffix(output)) return;
    throw Error(Fault::Scene,
                fmt::format("{}: must end in {} like {}, since only settings change",
                            output.string(), input.extension().string(), input.string()));
}

bool namesAnotherFile(const Json& item) {
    if (!item.is_object() || !item.contains("uri") || !item["uri"].is_string()) return false;
    return !item["uri"].get_ref<const std::string&>().starts_with("data:");
}

// The first file that the document refers to; empty when there is none.
std::string referredFile(const Json& document) {
    for (const char* list : {"buffers", "images"}) {
        if (!document.contains(list) || !document[list].is_array()) continue;
        for (const Json& item : document[list]) {
            if (namesAnotherFile(item)) return item["uri"];
        }
    }
    return {};
}

bool sameFolder(const fs::path& a, const fs::path& b) {
    std::error_code error;
    return fs::equivalent(fs::absolute(a).parent_path(), fs::absolute(b).parent_path(), error);
}

void checkReferences(const Json& document, const fs::path& input, const fs::path& output) {
    const bool stream = isStream(output);
    const std::string uri = referredFile(document);
    if (uri.empty() || (!stream && sameFolder(input, output))) return;
    throw Error(
        Fault::Scene,
        fmt::format("{}: refers to {} beside it; write the result to {}", input.string(),
                    shortened(uri), stream ? "a file in the same folder" : "the same folder"));
}

std::string materialWith(std::string_view material, const SurfaceShader& shader,
                         const std::string& where) {
    try {
        return withMember(material, "extras",
                          extrasWithShader(jsonMember(material, "extras"), shader));
    } catch (const Error& error) {
        throw Error(Fault::Scene, fmt::format("{}: {}", where, error.what()));
    }
}

/// `document` with the shaders in its materials; all other text is unchanged.
std::string documentWith(std::string_view document, const std::map<int, SurfaceShader>& shaders,
                         const std::string& where) {
    const std::string_view materials = jsonMember(document, "materials");
    std::vector<std::string_view> elements;
    if (!materials.empty() && materials.front() == '[') elements = jsonElements(materials);
    std::string text;
    std::size_t copied = 0;
    for (const auto& [index, shader] : shaders) {
        const bool there = index >= 0 && static_cast<std::size_t>(index) < elements.size();
        if (!there || elements[static_cast<std::size_t>(index)].front() != '{') {
            throw Error(Fault::Scene,
                        fmt::format("{}: has no material {} to hold settings", where, index));
        }
        const std::string_view old = elements[static_cast<std::size_t>(index)];
        const auto start = static_cast<std::size_t>(old.data() - document.data());
        text += document.substr(copied, start - copied);
        text += materialWith(old, shader, fmt::format("{}: material {}", where, index));
        copied = start + old.size();
    }
    return text.append(document.substr(copied));
}

}  // namespace

void writeGltfSettings(const fs::path& input, const fs::path& output,
                       const std::map<int, SurfaceShader>& shaders) {
    checkSuffix(input, output);
    GltfContainer container = readContainer(input);
    const std::string where = input.string();
    std::string_view document = container.json;
    const bool hasByteOrderMark = document.starts_with(kByteOrderMark);
    if (hasByteOrderMark) document.remove_prefix(kByteOrderMark.size());
    const Json parsed = parseJson(document, where);
    if (!parsed.is_object())
        throw Error(Fault::Scene, where + ": is no glTF document; name a glTF file");
    checkReferences(parsed, input, output);
    container.json = (hasByteOrderMark ? std::string(kByteOrderMark) : std::string()) +
                     documentWith(document, shaders, where);
    const std::string bytes = containerBytes(container);
    isStream(output) ? writeOut(bytes) : writeWholeFile(output, bytes);
}

}  // namespace tavora::studio
