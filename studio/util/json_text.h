#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

/// JSON as text: where things stand in it, and changes that leave the rest of
/// it (spaces, order, the spelling of numbers) as it was.
namespace tavora::studio {

/// Parses, or throws Fault::Scene "WHERE:LINE:COLUMN: not valid JSON (..)", or
/// "WHERE: .." for brackets more than 128 deep and numbers beyond all. Takes time
/// in proportion to the text, whatever it holds. Of members of one name the last
/// counts.
nlohmann::ordered_json parseJson(std::string_view text, const std::string& where);

/// "WHERE:LINE:COLUMN" of a byte of `text`, both counted from 1.
std::string placeInText(std::string_view text, std::size_t offset, const std::string& where);

/// A member of an object: its key read, and its value as it stands.
struct JsonMember {
    std::string key;
    std::string_view keyText;  ///< with its quotes; a view into the text
    std::string_view value;    ///< a view into the text
};

/// The members of `object`, the elements of `array`, in order. The text must be
/// valid JSON of that kind (parseJson took it).
std::vector<JsonMember> jsonMembers(std::string_view object);
std::vector<std::string_view> jsonElements(std::string_view array);

/// The last member of that key, as readers see it; empty when there is none.
std::string_view jsonMember(std::string_view object, std::string_view key);

/// `object` with the value of `key` replaced, or added at the end.
std::string withMember(std::string_view object, std::string_view key, std::string_view value);

}  // namespace tavora::studio
