#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tavora::studio {

/// `text` with every line break and tab replaced by a space, and every other control character by
/// a question mark, so that text from a file can neither break a line of a message nor control the
/// terminal.
std::string oneLine(std::string_view text);

/// At most the first `maxBytes` bytes of `text`, without cutting a UTF-8 character.
std::string_view cutText(std::string_view text, std::size_t maxBytes);

/// Text from a file as messages quote it: all of it when it is short, else its beginning and "..".
std::string shortened(std::string_view text);

}  // namespace tavora::studio
