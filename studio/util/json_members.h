#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include <nlohmann/json.hpp>

/// Access to members of JSON documents that may be absent or of a wrong type.
namespace tavora::studio {

/// `object[key]`; a JSON null when `object` is not an object or lacks the member.
inline const nlohmann::ordered_json& member(const nlohmann::ordered_json& object, const char* key) {
    static const nlohmann::ordered_json none;
    if (!object.is_object()) return none;
    const auto found = object.find(key);
    return found == object.end() ? none : *found;
}

/// A number that a float can hold, or `otherwise`.
inline double numberOr(const nlohmann::ordered_json& value, double otherwise) {
    constexpr double kLargestFloat = std::numeric_limits<float>::max();
    if (!value.is_number()) return otherwise;
    const double number = value.get<double>();
    return std::abs(number) <= kLargestFloat ? number : otherwise;
}

/// `list[i]` as numberOr() takes it.
inline double componentOr(const nlohmann::ordered_json& list, std::size_t i, double otherwise) {
    return list.is_array() && i < list.size() ? numberOr(list[i], otherwise) : otherwise;
}

/// A whole number from 0 to `most`; -1 for anything else.
inline int indexOf(const nlohmann::ordered_json& value, std::size_t most) {
    return value.is_number_unsigned() && value.get<std::uint64_t>() <= most ? value.get<int>() : -1;
}

}  // namespace tavora::studio
