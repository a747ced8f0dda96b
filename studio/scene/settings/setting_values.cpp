#include "studio/scene/settings/setting_values.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cstdint>
#include <fmt/format.h>
#include <optional>

#include "studio/scene/settings/setting_names.h"
#include "studio/util/error.h"
#include "studio/util/json_float.h"

namespace tavora::studio {
namespace {

constexpr std::size_t kMostNameBytes = 79;  // of a light in the module's list

[[noreturn]] void refuse(const std::string& where, const StoredField& field,
                         const std::string& wanted, const Settings& value) {
    std::string shown = value.dump(-1, ' ', true, Settings::error_handler_t::replace);
    if (shown.size() > 60) shown = shown.substr(0, 57) + "...";
    throw Error(Fault::Scene,
                fmt::format("{}: {} must be {}, not {}", where, field.name, wanted, shown));
}

[[noreturn]] void wrongKind(const StoredField& field, const Settings& value) {
    refuse("settings", field, "of the kind that is stored", value);
}

std::optional<std::int32_t> integerOf(const Settings& value) {
    if (!value.is_number_integer()) return {};
    const auto number = value.get<std::int64_t>();
    const bool fits = number >= INT32_MIN && number <= INT32_MAX;
    if (!fits || (value.is_number_unsigned() && number < 0)) return {};
    return static_cast<std::int32_t>(number);
}

bool equalIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](unsigned char x, unsigned char y) {
        return std::tolower(x) == std::tolower(y);
    });
}

// Numbers.

Settings readInteger(const StoredField& field, BlockItems& items) {
    return items.integer(field.name);
}

void writeInteger(const StoredField& field, const Settings& value, StateBlock& block) {
    const std::optional<std::int32_t> number = integerOf(value);
    if (!number) wrongKind(field, value);
    block.emplace_back(*number);
}

Settings checkInteger(const StoredField& field, const Settings& value, const std::string& where) {
    const std::optional<std::int32_t> number = integerOf(value);
    if (number && *number >= field.min && *number <= field.max) return *number;
    refuse(where, field, fmt::format("a whole number from {} to {}", field.min, field.max), value);
}

Settings readFraction(const StoredField& field, BlockItems& items) {
    return jsonOfFloat(items.number(field.name));
}

void writeFraction(const StoredField& field, const Settings& value, StateBlock& block) {
    const std::optional<float> number = floatOfJson(value);
    if (!number) wrongKind(field, value);
    block.emplace_back(*number);
}

Settings checkFraction(const StoredField& field, const Settings& value, const std::string& where) {
    if (value.is_number()) {
        const auto number = value.get<double>();
        if (number >= field.min && number <= field.max) {
            return jsonOfFloat(static_cast<float>(number));
        }
    }
    refuse(where, field, fmt::format("a number from {} to {}", field.min, field.max), value);
}

// Switches: 0 and 1 as booleans, whatever else a block holds as it is.

Settings readBoolean(const StoredField& field, BlockItems& items) {
    const std::int32_t number = items.integer(field.name);
    if (number == 0 || number == 1) return number == 1;
    return number;
}

void writeBoolean(const StoredField& field, const Settings& value, StateBlock& block) {
    if (!value.is_boolean()) return writeInteger(field, value, block);
    block.emplace_back(std::int32_t{value.get<bool>() ? 1 : 0});
}

Settings checkBoolean(const StoredField& field, const Settings& value, const std::string& where) {
    if (value.is_boolean()) return value;
    const std::optional<std::int32_t> number = integerOf(value);
    if (number && (*number == 0 || *number == 1)) return *number == 1;
    if (value.is_string() && equalIgnoringCase(value.get<std::string>(), "on")) return true;
    if (value.is_string() && equalIgnoringCase(value.get<std::string>(), "off")) return false;
    refuse(where, field, "true or false", value);
}

// Choices: their labels, or the integer when there is no label for it.

std::optional<std::int32_t> indexOfChoice(const StoredField& field, std::string_view label) {
    const auto labels = field.choices();
    for (std::size_t i = 0; i < labels.size(); ++i) {
        if (equalIgnoringCase(labels[i], label)) return static_cast<std::int32_t>(i);
    }
    return {};
}

Settings choiceOf(const StoredField& field, std::int32_t index) {
    const auto labels = field.choices();
    if (index < 0 || static_cast<std::size_t>(index) >= labels.size()) return index;
    return std::string(labels[static_cast<std::size_t>(index)]);
}

Settings readChoice(const StoredField& field, BlockItems& items) {
    return choiceOf(field, items.integer(field.name));
}

void writeChoice(const StoredField& field, const Settings& value, StateBlock& block) {
    if (!value.is_string()) return writeInteger(field, value, block);
    const std::optional<std::int32_t> index = indexOfChoice(field, value.get<std::string>());
    if (!index) wrongKind(field, value);
    block.emplace_back(*index);
}

Settings checkChoice(const StoredField& field, const Settings& value, const std::string& where) {
    std::optional<std::int32_t> index = integerOf(value);
    if (value.is_string()) index = indexOfChoice(field, value.get<std::string>());
    if (index) {
        Settings label = choiceOf(field, *index);
        if (label.is_string()) return label;
    }
    std::string labels;
    for (const std::string_view label : field.choices()) {
        labels += fmt::format("{}\"{}\"", labels.empty() ? "" : ", ", label);
    }
    refuse(where, field, "one of " + labels, value);
}

// Colours.

Settings readColor(const StoredField& field, BlockItems& items) {
    Settings color = Settings::array();
    for (int i = 0; i < 3; ++i)
        color.push_back(readFraction(field, items));
    return color;
}

void writeColor(const StoredField& field, const Settings& value, StateBlock& block) {
    if (!value.is_array() || value.size() != 3) wrongKind(field, value);
    for (const Settings& channel : value)
        writeFraction(field, channel, block);
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
    refuse(where, field, "\"#rrggbb\" or three numbers from 0 to 1", value);
}

// Lists.

std::int32_t readCount(const StoredField& field, BlockItems& items) {
    const std::int32_t count = items.integer(field.name);
    if (count > maxStoredEntries) {
        throw Error(Fault::Scene,
                    fmt::format("stored settings are damaged: {} {} entries", count, field.name));
    }
    return count;
}

std::int32_t sizeOf(const StoredField& field, const Settings& list) {
    if (list.is_array() && list.size() <= maxStoredEntries) {
        return static_cast<std::int32_t>(list.size());
    }
    wrongKind(field, list);
}

Settings readZone(BlockItems& items, const Settings& fresh) {
    Settings zone;
    for (const StoredField& field : storedZoneFields) {
        const std::string name(field.name);
        zone[name] = items.hold(field) ? readValue(field, items) : fresh[name];
    }
    return zone;
}

Settings readZones(const StoredField& field, BlockItems& items) {
    const Settings fresh = newZone();
    Settings zones = Settings::array();
    for (std::int32_t left = readCount(field, items); left > 0; --left) {
        zones.push_back(readZone(items, fresh));
    }
    return zones;
}

void writeZones(const StoredField& list, const Settings& zones, StateBlock& block) {
    block.emplace_back(sizeOf(list, zones));
    for (const Settings& zone : zones) {
        for (const StoredField& field : storedZoneFields) {
            const auto found = zone.find(std::string(field.name));
            if (found == zone.end()) wrongKind(list, zone);
            writeValue(field, *found, block);
        }
    }
}

Settings checkZones(const StoredField& field, const Settings& value, const std::string& where) {
    if (!value.is_array() || value.size() > maxStoredEntries) {
        refuse(where, field, fmt::format("a list of at most {} zones", maxStoredEntries), value);
    }
    Settings zones = Settings::array();
    for (const Settings& zone : value) {
        const std::string place = fmt::format("{}: zones[{}]", where, zones.size());
        if (zone.is_object() && !zone.contains("position")) {
            throw Error(Fault::Scene,
                        fmt::format("{} has no \"position\"; give one from 0 to 1", place));
        }
        zones.push_back(checkedZone(zone, newZone(), place));
    }
    return zones;
}

Settings readLights(const StoredField& field, BlockItems& items) {
    Settings names = Settings::array();
    for (std::int32_t left = readCount(field, items); left > 0; --left) {
        names.push_back(items.text(field.name));
    }
    return names;
}

void writeLights(const StoredField& field, const Settings& value, StateBlock& block) {
    block.emplace_back(sizeOf(field, value));
    for (const Settings& name : value) {
        if (!name.is_string()) wrongKind(field, name);
        block.emplace_back(name.get<std::string>());
    }
}

Settings checkLights(const StoredField& field, const Settings& value, const std::string& where) {
    if (value == "all") return value;
    Settings names = value.is_string() ? Settings::array({value}) : value;
    const auto fits = [](const Settings& name) {
        return name.is_string() && name.get_ref<const std::string&>().size() <= kMostNameBytes;
    };
    const bool list = names.is_array() && names.size() <= maxStoredEntries;
    if (list && std::all_of(names.begin(), names.end(), fits)) return names;
    refuse(where, field,
           fmt::format("\"all\" or a list of light names of at most {} bytes", kMostNameBytes),
           value);
}

Settings newZoneValue(const StoredField& field) {
    switch (field.kind) {
        case FieldKind::Color:
            return {jsonOfFloat(0.3F), jsonOfFloat(0.5F), jsonOfFloat(0.7F)};
        case FieldKind::Fraction:
            return field.name == "position" || field.name == "trans" ? 0.0 : 1.0;
        case FieldKind::Boolean:
            return false;
        default:
            return 0;
    }
}

struct KindHandler {
    FieldKind kind;
    Settings (*read)(const StoredField&, BlockItems&);
    void (*write)(const StoredField&, const Settings&, StateBlock&);
    Settings (*check)(const StoredField&, const Settings&, const std::string&);
};

constexpr std::array<KindHandler, 8> kHandlers{{
    {FieldKind::Boolean, readBoolean, writeBoolean, checkBoolean},
    {FieldKind::Choice, readChoice, writeChoice, checkChoice},
    {FieldKind::Integer, readInteger, writeInteger, checkInteger},
    {FieldKind::Fraction, readFraction, writeFraction, checkFraction},
    {FieldKind::Color, readColor, writeColor, checkColor},
    {FieldKind::Zones, readZones, writeZones, checkZones},
    {FieldKind::Lights, readLights, writeLights, checkLights},
    {FieldKind::Reserved, readInteger, writeInteger, checkInteger},
}};

const KindHandler& handlerOf(const StoredField& field) {
    return *std::find_if(kHandlers.begin(), kHandlers.end(),
                         [&](const KindHandler& handler) { return handler.kind == field.kind; });
}

}  // namespace

Settings readValue(const StoredField& field, BlockItems& items) {
    if (field.flagInVersion1 && items.isVersion1()) {
        return items.integer(field.name) != 0 ? 1.0 : 0.0;
    }
    return handlerOf(field).read(field, items);
}

void writeValue(const StoredField& field, const Settings& value, StateBlock& block) {
    handlerOf(field).write(field, value, block);
}

Settings checkedValue(const StoredField& field, const Settings& value, const std::string& where) {
    return handlerOf(field).check(field, value, where);
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
    for (const StoredField& field : storedZoneFields) {
        zone[std::string(field.name)] = newZoneValue(field);
    }
    return zone;
}

}  // namespace tavora::studio
