#include "studio/panels/value_record.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tavora::studio {
namespace {

int rounded(double number) {
    if (std::isnan(number)) return 0;
    constexpr double lowest = std::numeric_limits<int>::min();
    constexpr double highest = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(std::round(number), lowest, highest));
}

int ownType(const ControlValue& value) {
    constexpr int types[] = {HOST_VALUE_INTEGER, HOST_VALUE_FLOAT, HOST_VALUE_INTEGER_VECTOR};
    return types[value.index()];
}

}  // namespace

std::optional<ControlValue> readValue(const HostValue* record) {
    if (record == nullptr) return std::nullopt;
    switch (record->type) {
        case HOST_VALUE_INTEGER:
        case HOST_VALUE_BOOLEAN:
        case HOST_VALUE_CHOICE:
            return record->of.integer;
        case HOST_VALUE_FLOAT:
            return record->of.number;
        case HOST_VALUE_INTEGER_VECTOR:
            return std::to_array(record->of.vector);
        default:
            return std::nullopt;
    }
}

void writeValue(const ControlValue& value, HostValue& record) {
    switch (record.type) {
        case HOST_VALUE_INTEGER:
        case HOST_VALUE_BOOLEAN:
        case HOST_VALUE_CHOICE:
            record.of.integer = asInteger(value);
            break;
        case HOST_VALUE_FLOAT:
            record.of.number = asNumber(value);
            break;
        case HOST_VALUE_INTEGER_VECTOR:
            std::ranges::copy(asVector(value), record.of.vector);
            break;
        default:
            record.type = ownType(value);
            writeValue(value, record);
    }
}

int asInteger(const ControlValue& value) {
    if (const int* integer = std::get_if<int>(&value)) return *integer;
    if (const double* number = std::get_if<double>(&value)) return rounded(*number);
    return std::get<std::array<int, 3>>(value)[0];
}

double asNumber(const ControlValue& value) {
    const double* number = std::get_if<double>(&value);
    return number != nullptr ? *number : asInteger(value);
}

std::array<int, 3> asVector(const ControlValue& value) {
    const auto* vector = std::get_if<std::array<int, 3>>(&value);
    return vector != nullptr ? *vector : std::array<int, 3>{asInteger(value), 0, 0};
}

}  // namespace tavora::studio
