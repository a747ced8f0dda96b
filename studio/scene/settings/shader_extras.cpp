#include "studio/scene/settings/shader_extras.h"

#include <fmt/format.h>
#include <utility>

#include "studio/scene/settings/stored_block.h"
#include "studio/util/error.h"
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

const Json* memberOf(const Json& object, const char* key) {
    if (!object.is_object()) return nullptr;
    const auto found = object.find(key);
    return found == object.end() ? nullptr : &*found;
}

std::optional<SurfaceShader> shaderOf(const Json& entry) {
    const Json* server = memberOf(entry, kServer);
    const Json* enabled = memberOf(entry, kEnabled);
    const Json* items = memberOf(entry, kState);
    if (server == nullptr || !server->is_string()) return {};
    if (enabled != nullptr && !enabled->is_boolean()) return {};
    if (items == nullptr || !items->is_array()) return {};
    std::optional<StateBlock> block = blockOfItems(*items);
    if (!block) return {};
    return SurfaceShader{server->get<std::string>(), enabled == nullptr || enabled->get<bool>(),
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
        const Json* server = nullptr;
        const Json parsed = Json::parse(entry);
        server = memberOf(parsed, kServer);
        if (server != nullptr && *server == shader.server) {
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
    const Json* own = memberOf(extras, kOwn);
    const Json* shaders = own != nullptr ? memberOf(*own, kShaders) : nullptr;
    if (own == nullptr || (own->is_object() && shaders == nullptr)) return {};
    const bool list = shaders != nullptr && shaders->is_array();
    if (list && shaders->empty()) return {};
    std::optional<SurfaceShader> shader = list ? shaderOf(shaders->front()) : std::nullopt;
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
