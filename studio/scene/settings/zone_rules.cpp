#include "studio/scene/settings/zone_rules.h"

#include <algorithm>
#include <fmt/format.h>

#include "studio/util/error.h"

namespace tavora::studio {
namespace {

bool isBlend(const Settings& zone) {
    return zone["blend"] != false && zone["blend"] != 0;
}

double positionOf(const Settings& zone) {
    // A zone whose position is not a number is sorted to the front.
    return zone["position"].is_number() ? zone["position"].get<double>() : -1;
}

}  // namespace

void orderZones(Settings& zones, const std::string& where) {
    std::stable_sort(zones.begin(), zones.end(), [](const Settings& a, const Settings& b) {
        return positionOf(a) < positionOf(b);
    });
    if (zones.size() < 2) {
        throw Error(Fault::Scene, fmt::format("{}: a gradient needs at least two zones, not {}",
                                              where, zones.size()));
    }
    if (isBlend(zones.front()) || isBlend(zones.back())) {
        throw Error(
            Fault::Scene,
            fmt::format("{}: the first and the last zone must be ordinary; take \"blend\" off",
                        where));
    }
    const auto pair = std::adjacent_find(
        zones.begin(), zones.end(),
        [](const Settings& a, const Settings& b) { return isBlend(a) && isBlend(b); });
    if (pair == zones.end()) return;
    throw Error(
        Fault::Scene,
        fmt::format(
            "{}: the blend zones {} and {} stand side by side; put an ordinary zone between them",
            where, pair - zones.begin(), pair - zones.begin() + 1));
}

}  // namespace tavora::studio
