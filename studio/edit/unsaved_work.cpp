#include "studio/edit/unsaved_work.h"

#include <ctime>
#include <fmt/chrono.h>
#include <fmt/format.h>

#include "studio/scene/settings/settings.h"
#include "studio/scene/settings/shader_extras.h"
#include "studio/util/error.h"
#include "studio/util/json_text.h"

namespace tavora::studio {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kVersion = 1;

std::string quoted(const std::string& text) {
    return Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string surfaceText(const std::string& name, const std::optional<SurfaceShader>& shader) {
    if (!shader) return fmt::format("  {{\"name\": {}}}", quoted(name));
    return fmt::format("  {{\"name\": {}, \"extras\": {}}}", quoted(name),
                       extrasWithShader({}, *shader));
}

SurfaceShader shaderIn(const Json& extras, const std::string& where) {
    std::vector<std::string> damage;
    std::optional<SurfaceShader> shader = shaderFromExtras(extras, where, damage);
    if (!shader) throw Error(Fault::Scene, where + ": no settings");
    settingsOf(shader->block);  // throws for a damaged block
    return std::move(*shader);
}

UnsavedWork workIn(const Json& document, const std::string& where) {
    if (document.at("tavora") != "recovery" || document.at("version") != kVersion) {
        throw Error(Fault::Scene, where + ": no recovery file of this version");
    }
    UnsavedWork work;
    work.scene = document.at("scene").get<std::string>();
    work.sceneSize = document.at("size").get<std::uintmax_t>();
    work.sceneHash = std::stoull(document.at("hash").get<std::string>(), nullptr, 16);
    for (const Json& entry : document.at("surfaces")) {
        std::optional<SurfaceShader> shader;
        if (entry.contains("extras")) shader = shaderIn(entry["extras"], where);
        work.surfaces.emplace_back(entry.at("name").get<std::string>(), std::move(shader));
    }
    return work;
}

}  // namespace

std::string textOfUnsavedWork(const UnsavedWork& work) {
    std::string surfaces;
    for (const auto& [name, shader] : work.surfaces) {
        surfaces += (surfaces.empty() ? "" : ",\n") + surfaceText(name, shader);
    }
    return fmt::format(
        "{{\"tavora\": \"recovery\", \"version\": {},\n \"scene\": {},\n \"time\": "
        "\"{:%Y-%m-%dT%H:%M:%SZ}\",\n \"size\": {}, \"hash\": \"{:016x}\",\n \"surfaces\": "
        "[\n{}\n]}}\n",
        kVersion, quoted(work.scene.string()), fmt::gmtime(std::time(nullptr)), work.sceneSize,
        work.sceneHash, surfaces);
}

UnsavedWork readUnsavedWork(std::string_view text, const std::string& where) {
    const Json document = parseJson(text, where);
    try {
        return workIn(document, where);
    } catch (const std::exception&) {
        throw Error(Fault::Scene, where + ": is damaged");
    }
}

}  // namespace tavora::studio
