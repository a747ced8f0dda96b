#include "studio/scene/settings/settings.h"

#include <algorithm>
#include <charconv>
#include <fmt/format.h>
#include <optional>

#include "persist/stored_fields.h"
#include "studio/scene/settings/setting_names.h"
#include "studio/scene/settings/setting_values.h"
#include "studio/scene/settings/zone_rules.h"
#include "studio/util/error.h"

namespace tavora::studio {
namespace {

constexpr const char* kZoneList = "zoneList";
constexpr const char* kLightList = "lightList";
constexpr const char* kAmbientLight = "Ambient";  // stands for ambient light in a light list

/// The parts of a name like "zones[1].color".
struct ZonePath {
    std::size_t index = 0;
    std::string field;  ///< empty: the whole zone
};

std::optional<ZonePath> zonePathOf(std::string_view name) {
    const std::size_t open = name.find('[');
    const std::string_view list = name.substr(0, open);
    if (open == std::string_view::npos || (list != "zones" && list != kZoneList)) return {};
    ZonePath path;
    const char* end = name.data() + name.size();
    const auto [stop, error] = std::from_chars(name.data() + open + 1, end, path.index);
    if (error != std::errc() || stop == end || *stop != ']') return {};
    if (stop + 1 == end) return path;
    if (stop[1] != '.') return {};
    path.field.assign(stop + 2, end);
    return path;
}

void changeZone(Settings& settings, const ZonePath& path, const Settings& value,
                const std::string& where) {
    Settings& zones = settings[kZoneList];
    if (path.index >= zones.size()) {
        throw Error(Fault::Scene, fmt::format("{}: there is no zones[{}]; {}", where, path.index,
                                              zones.empty() ? "give the whole list"
                                                            : fmt::format("the last is zones[{}]",
                                                                          zones.size() - 1)));
    }
    Settings& zone = zones[path.index];
    const Settings changes = path.field.empty() ? value : Settings::object({{path.field, value}});
    zone = checkedZone(changes, zone, fmt::format("{}: zones[{}]", where, path.index));
}

// Applies one change. Returns whether it changed the zones.
bool change(Settings& settings, const std::string& name, const Settings& value,
            const std::string& where) {
    if (const std::optional<ZonePath> path = zonePathOf(name)) {
        changeZone(settings, *path, value, where);
        return true;
    }
    const StoredField& field = findField(storedFields, name, where);
    settings[std::string(field.name)] = checkedValue(field, value, where);
    return field.kind == FieldKind::Zones;
}

}  // namespace

void applySettings(Settings& settings, const nlohmann::ordered_json& changes,
                   const std::string& where) {
    if (!changes.is_object()) {
        throw Error(Fault::Scene,
                    fmt::format("{}: settings must be an object of names and values", where));
    }
    bool zonesChanged = false;
    for (const auto& [name, value] : changes.items()) {
        if (change(settings, name, value, where)) zonesChanged = true;
    }
    if (zonesChanged) orderZones(settings[kZoneList], where);
}

StateBlock withChanges(const StateBlock& block, const Settings& changes, const std::string& where,
                       std::span<const std::string> sceneLights) {
    Settings settings = settingsOf(block);
    applySettings(settings, changes, where);
    Settings& lights = settings[kLightList];
    if (lights == "all") lights = std::vector<std::string>(sceneLights.begin(), sceneLights.end());
    return blockOf(settings);
}

std::vector<std::string> unknownLights(const StateBlock& block,
                                       std::span<const std::string> sceneLights) {
    std::vector<std::string> unknown;
    const Settings settings = settingsOf(block);
    for (const Settings& name : settings[kLightList]) {
        const bool isInScene =
            std::find(sceneLights.begin(), sceneLights.end(), name) != sceneLights.end();
        if (!isInScene && name != kAmbientLight) unknown.push_back(name);
    }
    return unknown;
}

}  // namespace tavora::studio
