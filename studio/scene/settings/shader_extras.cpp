#include "studio/scene/settings/shader_extras.h"

#include <fmt/format.h>
#include <utility>

#include "studio/scene/settings/stored_block.h"
#include "studio/util/error.h"
#include "studio/util/json_members.h"
#include "studio/util/json_numbers.h"
#include "studio/util/json_text.h"

namespace tavora::studio {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kOwn = "tavora";
constexpr const char* kShaders = "shaders";
constexpr const char* kServer = "server";
constexpr const char* kEnabled = "enabled";
constexpr const char* kState = "state";

std::string textOf(const Json& value) {
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string textOf(const StateItem& item) {
    if (const auto* number = std::get_if<float>(&item)) return jsonTextOfFloat(*number);
    if (const auto* number = std::get_if<std::int32_t>(&item)) return fmt::format("{}", *number);
    return textOf(Json(std::get<std::string>(item)));
}

std::string textOf(const StateBlock& state) {
    std::string text = "[";
    for (const StateItem& item : state) {
        if (text.size() > 1) text += ',';
        text += textOf(item);
    }
    text += ']';
    return text;
}

std::optional<SurfaceShader> shaderOf(const Json& entry) {
    const Json& server = member(entry, kServer);
    const Json& enabled = member(entry, kEnabled);
    const Json& items = member(entry, kState);
    if (!server.is_string() || !items.is_array()) return {};
    if (!enabled.is_null() && !enabled.is_boolean()) return {};
    std::optional<StateBlock> block = blockOfItems(items);
    if (!block) return {};
    return SurfaceShader{server.get<std::string>(), enabled.is_null() || enabled.get<bool>(),
                         std::move(*block)};
}

bool isObject(std::string_view text) {
    return !text.empty() && text.front() == '{';
}
bool isArray(std::string_view text) {
    return !text.empty() && text.front() == '[';
}

std::string entryWith(std::string_view entry, const SurfaceShader& shader) {
    std::string text = withMember(entry, kServer, textOf(Json(shader.server)));
    text = withMember(text, kEnabled, shader.enabled ? "true" : "false");
    return withMember(text, kState, textOf(shader.block));
}

std::string shadersWith(std::string_view shaders, const SurfaceShader& shader) {
    std::string_view same = "{}";
    std::string others;
    for (const std::string_view entry :
         isArray(shaders) ? jsonElements(shaders) : std::vector<std::string_view>{}) {
        if (member(parseJson(entry, kOwn), kServer) == shader.server) {
            same = entry;
        } else {
            others += fmt::format(",{}", entry);
        }
    }
    return fmt::format("[{}{}]", entryWith(same, shader), others);
}

}  // namespace

std::optional<SurfaceShader> shaderFromExtras(const Json& extras, const std::string& where,
                                              std::vector<std::string>& warnings) {
    const Json& own = member(extras, kOwn);
    const Json& shaders = member(own, kShaders);
    if (own.is_null() || (own.is_object() && shaders.is_null())) return {};
    if (shaders.is_array() && shaders.empty()) return {};
    std::optional<SurfaceShader> shader;
    if (shaders.is_array()) shader = shaderOf(shaders.front());
    if (!shader) {
        warnings.push_back(fmt::format(
            "{}: the shader stored in its extras is damaged and left out; store it again", where));
    }
    return shader;
}

std::string extrasWithShader(std::string_view extras, const SurfaceShader& shader) {
    if (extras.empty() || extras == "null") extras = "{}";
    if (!isObject(extras)) {
        throw Error(Fault::Scene,
                    "its extras are not a JSON object, so no shader can be stored there");
    }
    const std::string_view own = jsonMember(extras, kOwn);
    const std::string_view members = isObject(own) ? own : "{}";
    const std::string shaders = shadersWith(jsonMember(members, kShaders), shader);
    return withMember(extras, kOwn, withMember(members, kShaders, shaders));
}

}  // namespace tavora::studio
