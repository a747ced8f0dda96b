#include "studio/scene/settings/setting_values.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <fmt/format.h>

#include "studio/scene/settings/setting_names.h"
#include "studio/util/error.h"
#include "studio/util/json_numbers.h"

namespace tavora::studio {
namespace {

bool equalIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](unsigned char x, unsigned char y) {
        return std::tolower(x) == std::tolower(y);
    });
}

std::optional<std::int32_t> indexOfChoice(const StoredField& field, std::string_view label) {
    const auto labels = field.choices();
    for (std::size_t i = 0; i < labels.size(); ++i) {
        if (equalIgnoringCase(labels[i], label)) return static_cast<std::int32_t>(i);
    }
    return {};
}

Settings checkInteger(const StoredField& field, const Settings& value, const std::string& where) {
    const std::optional<std::int32_t> number = integerOfJson(value);
    if (number && *number >= field.min && *number <= field.max) return *number;
    refuseValue(where, field, fmt::format("a whole number from {} to {}", field.min, field.max),
                value);
}

Settings checkFraction(const StoredField& field, const Settings& value, const std::string& where) {
    if (value.is_number()) {
        const auto number = value.get<double>();
        if (number >= field.min && number <= field.max) {
            return jsonOfFloat(static_cast<float>(number));
        }
    }
    refuseValue(where, field, fmt::format("a number from {} to {}", field.min, field.max), value);
}

Settings checkBoolean(const StoredField& field, const Settings& value, const std::string& where) {
    const std::optional<std::int32_t> number = integerOfValue(field, value);
    if (number && (*number == 0 || *number == 1)) return *number == 1;
    if (value.is_string() && equalIgnoringCase(value.get<std::string>(), "on")) return true;
    if (value.is_string() && equalIgnoringCase(value.get<std::string>(), "off")) return false;
    refuseValue(where, field, "true or false", value);
}

Settings checkChoice(const StoredField& field, const Settings& value, const std::string& where) {
    if (const std::optional<std::int32_t> index = integerOfValue(field, value)) {
        Settings label = valueOfInteger(field, *index);
        if (label.is_string()) return label;
    }
    std::string labels;
    for (const std::string_view label : field.choices()) {
        labels += fmt::format("{}\"{}\"", labels.empty() ? "" : ", ", label);
    }
    refuseValue(where, field, "one of " + labels, value);
}

std::optional<Settings> colorOfHex(const std::string& text) {
    if (text.size() != 7 || text[0] != '#') return {};
    Settings color = Settings::array();
    for (std::size_t i = 1; i < text.size(); i += 2) {
        unsigned channel = 0;
        const char* end = text.data() + i + 2;
        if (std::from_chars(text.data() + i, end, channel, 16).ptr != end) return {};
        color.push_back(jsonOfFloat(static_cast<float>(channel) / 255.0F));
    }
    return color;
}

Settings checkColor(const StoredField& field, const Settings& value, const std::string& where) {
    if (value.is_string()) {
        if (auto color = colorOfHex(value.get<std::string>())) return *color;
    } else if (value.is_array() && value.size() == 3) {
        Settings color = Settings::array();
        for (const Settings& channel : value)
            color.push_back(checkFraction(field, channel, where));
        return color;
    }
    refuseValue(where, field, "\"#rrggbb\" or three numbers from 0 to 1", value);
}

Settings checkZones(const StoredField& field, const Settings& value, const std::string& where) {
    if (!value.is_array() || value.size() > maxStoredEntries) {
        refuseValue(where, field, fmt::format("a list of at most {} zones", maxStoredEntries),
                    value);
    }
    Settings zones = Settings::array();
    for (const Settings& zone : value) {
        const std::string zoneWhere = fmt::format("{}: zones[{}]", where, zones.size());
        if (zone.is_object() && !zone.contains("position")) {
            throw Error(Fault::Scene,
                        fmt::format("{} has no \"position\"; give one from 0 to 1", zoneWhere));
        }
        zones.push_back(checkedZone(zone, newZone(), zoneWhere));
    }
    return zones;
}

Settings checkLights(const StoredField& field, const Settings& value, const std::string& where) {
    if (value == "all") return value;
    Settings names = value.is_string() ? Settings::array({value}) : value;
    const auto fits = [](const Settings& name) {
        return name.is_string() && name.get_ref<const std::string&>().size() <= maxLightNameBytes;
    };
    const bool list = names.is_array() && names.size() <= maxStoredEntries;
    if (list && std::all_of(names.begin(), names.end(), fits)) return names;
    refuseValue(
        where, field,
        fmt::format("\"all\" or a list of light names of at most {} bytes", maxLightNameBytes),
        value);
}

/// The check for each FieldKind, in its order.
constexpr std::array kChecks{checkBoolean, checkChoice, checkInteger, checkFraction,
                             checkColor,   checkZones,  checkLights,  checkInteger};

}  // namespace

Settings valueOfInteger(const StoredField& field, std::int32_t number) {
    if (field.kind == FieldKind::Boolean && (number == 0 || number == 1)) return number == 1;
    const auto labels = field.choices();
    if (number < 0 || static_cast<std::size_t>(number) >= labels.size()) return number;
    return std::string(labels[static_cast<std::size_t>(number)]);
}

std::optional<std::int32_t> integerOfValue(const StoredField& field, const Settings& value) {
    if (field.kind == FieldKind::Boolean && value.is_boolean()) return value.get<bool>() ? 1 : 0;
    if (value.is_string()) return indexOfChoice(field, value.get<std::string>());
    return integerOfJson(value);
}

Settings initialValue(const StoredField& field) {
    const auto& [first, second, third] = field.initial.channels;
    switch (field.kind) {
        case FieldKind::Fraction:
            return jsonOfFloat(first);
        case FieldKind::Color:
            return {jsonOfFloat(first), jsonOfFloat(second), jsonOfFloat(third)};
        case FieldKind::Zones:
        case FieldKind::Lights:
            return Settings::array();
        default:
            return valueOfInteger(field, static_cast<std::int32_t>(first));
    }
}

Settings checkedValue(const StoredField& field, const Settings& value, const std::string& where) {
    return kChecks[static_cast<std::size_t>(field.kind)](field, value, where);
}

Settings checkedZone(const Settings& zone, const Settings& base, const std::string& where) {
    if (!zone.is_object()) {
        throw Error(Fault::Scene,
                    fmt::format("{} must be an object like {{\"position\": 0.5}}", where));
    }
    Settings checked = base;
    for (const auto& [name, value] : zone.items()) {
        const StoredField& field = findField(storedZoneFields, name, where);
        checked[std::string(field.name)] = checkedValue(field, value, where);
    }
    return checked;
}

Settings newZone() {
    Settings zone;
    for (const StoredField& field : storedZoneFields)
        zone[std::string(field.name)] = initialValue(field);
    return zone;
}

void refuseValue(const std::string& where, const StoredField& field, const std::string& wanted,
                 const Settings& value) {
    std::string shown = value.dump(-1, ' ', true, Settings::error_handler_t::replace);
    if (shown.size() > 60) shown = shown.substr(0, 57) + "...";
    throw Error(Fault::Scene,
                fmt::format("{}: {} must be {}, not {}", where, field.name, wanted, shown));
}

}  // namespace tavora::studio
