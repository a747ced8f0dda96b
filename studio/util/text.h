#pragma once

#include <string>
#include <string_view>

namespace tavora::studio {

/// `text` with a space for every line break and tab, and a question mark for
/// every other control character: what a file says must neither break a line of
/// a report nor reach the terminal as a command.
std::string oneLine(std::string_view text);

}  // namespace tavora::studio
