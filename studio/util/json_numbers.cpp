#include "studio/util/json_numbers.h"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <fmt/format.h>
#include <limits>
#include <string>
#include <string_view>

namespace tavora::studio {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::uint32_t kUsualNan = 0x7fc00000;
constexpr double kRoundsToInfinity = 0x1.ffffffp127;  // half a step above the largest float

std::string bitsOf(float value) {
    return fmt::format("{:#010x}", std::bit_cast<std::uint32_t>(value));
}

std::string nameOf(float value) {
    if (std::isinf(value)) return value > 0 ? "Infinity" : "-Infinity";
    return std::bit_cast<std::uint32_t>(value) == kUsualNan ? "NaN" : bitsOf(value);
}

Json namedFloat(const std::string& name) {
    return Json::object({{"float", name}});
}

std::string shortest(float value) {
    std::array<char, 32> text;
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), value).ptr};
}

std::optional<float> floatOfName(const std::string& name) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    if (name == "NaN") return std::bit_cast<float>(kUsualNan);
    if (name == "Infinity") return kInfinity;
    if (name == "-Infinity") return -kInfinity;
    std::uint32_t bits = 0;
    const char* end = name.data() + name.size();
    if (!name.starts_with("0x")) return {};
    const auto [stop, error] = std::from_chars(name.data() + 2, end, bits, 16);
    if (error != std::errc() || stop != end) return {};
    return std::bit_cast<float>(bits);
}

// The double that a decimal is parsed to. Empty when rounding that to float does not give
// `value`: a reader rounds twice.
std::optional<double> doubleOf(const std::string& decimal, float value) {
    double number = 0;
    std::from_chars(decimal.data(), decimal.data() + decimal.size(), number);
    if (static_cast<float>(number) != value) return {};
    return number;
}

}  // namespace

Json jsonOfFloat(float value) {
    if (!std::isfinite(value)) return namedFloat(nameOf(value));
    return doubleOf(shortest(value), value).value_or(static_cast<double>(value));
}

std::string jsonTextOfFloat(float value) {
    if (value == 0 && std::signbit(value)) return namedFloat(bitsOf(value)).dump();
    const std::string text = shortest(value);
    if (!std::isfinite(value) || !doubleOf(text, value)) return jsonOfFloat(value).dump();
    return text.find_first_of(".e") == std::string::npos ? text + ".0" : text;
}

std::optional<float> floatOfJson(const Json& value) {
    if (value.is_object() && value.size() == 1 && value.contains("float")) {
        const Json& name = value["float"];
        return name.is_string() ? floatOfName(name.get<std::string>()) : std::nullopt;
    }
    if (!value.is_number()) return {};
    const double number = value.get<double>();
    if (!(std::abs(number) < kRoundsToInfinity)) return {};
    return static_cast<float>(number);
}

std::optional<std::int32_t> integerOfJson(const Json& value) {
    if (!value.is_number()) return {};
    double number = value.get<double>();
    if (!(number >= INT32_MIN && number <= INT32_MAX)) return {};
    // A number that single precision makes whole is whole, since it would be written so.
    if (number != std::trunc(number)) number = static_cast<double>(static_cast<float>(number));
    if (number != std::trunc(number) || number > INT32_MAX) return {};
    return static_cast<std::int32_t>(number);
}

}  // namespace tavora::studio
