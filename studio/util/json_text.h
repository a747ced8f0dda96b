#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

/// JSON as text: positions in it, and changes that leave all other text (spaces, order, the
/// spelling of numbers) as it is.
namespace tavora::studio {

/// Parses JSON in time proportional to its length. When members of an object have the same key,
/// the last one counts. Throws Error, Fault::Scene: "WHERE:LINE:COLUMN: not valid JSON (..)", or
/// "WHERE: .." for more than 128 nested brackets and for numbers that are too large.
nlohmann::ordered_json parseJson(std::string_view text, const std::string& where);

/// The position of the byte at `offset` as "WHERE:LINE:COLUMN", line and column counted from 1.
std::string positionInText(std::string_view text, std::size_t offset, const std::string& where);

/// A member of an object: its decoded key, and the text of its value.
struct JsonMember {
    std::string key;
    std::string_view keyText;  ///< with its quotes; a view into the text
    std::string_view value;    ///< a view into the text
};

/// The members of `object` or the elements of `array`, in order. The text must be a valid JSON
/// object or array (parseJson() accepts it).
std::vector<JsonMember> jsonMembers(std::string_view object);
std::vector<std::string_view> jsonElements(std::string_view array);

/// The text of the value of `key`: the last one, as for a parser; empty when there is none.
std::string_view jsonMember(std::string_view object, std::string_view key);

/// `object` with the value of `key` replaced, or added at the end.
std::string withMember(std::string_view object, std::string_view key, std::string_view value);

}  // namespace tavora::studio
