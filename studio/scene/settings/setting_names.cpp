#include "studio/scene/settings/setting_names.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <iterator>
#include <utility>
#include <vector>

#include "studio/util/error.h"
#include "studio/util/nearest_name.h"
#include "studio/util/text.h"

namespace tavora::studio {
namespace {

constexpr std::array<std::pair<std::string_view, std::string_view>, 2> kShortNames{{
    {"zones", "zoneList"},
    {"lights", "lightList"},
}};

std::string_view fullName(std::string_view name) {
    for (const auto& [shorter, full] : kShortNames) {
        if (name == shorter) return full;
    }
    return name;
}

}  // namespace

const StoredField& findField(std::span<const StoredField> table, std::string_view name,
                             const std::string& where) {
    std::vector<std::string> names;
    for (const StoredField& field : table) {
        if (field.name == fullName(name)) return field;
        names.emplace_back(field.name);
    }
    throw Error(Fault::Scene, fmt::format("{}: unknown setting \"{}\"{}", where, shortened(name),
                                          nearestNames(name, names)));
}

bool isSettingName(std::string_view name) {
    return std::any_of(std::begin(storedFields), std::end(storedFields),
                       [&](const StoredField& field) { return field.name == fullName(name); });
}

}  // namespace tavora::studio
