#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tavora::studio {

/// `text` with a space for every line break and tab, and a question mark for
/// every other control character: what a file says must neither break a line of
/// a report nor reach the terminal as a command.
std::string oneLine(std::string_view text);

/// The first `most` bytes of `text` at the most, never part of a UTF-8 character.
std::string_view cutText(std::string_view text, std::size_t most);

/// What a file says, as a message quotes it: whole where it is short, else its
/// beginning and "..", so that no file makes a message long.
std::string shortened(std::string_view text);

}  // namespace tavora::studio
