#include "studio/util/some_names.h"

#include <algorithm>
#include <fmt/format.h>

namespace tavora::studio {

std::string someOf(const std::vector<std::string>& names) {
    constexpr std::size_t kMaxNames = 4;
    std::string text;
    for (std::size_t i = 0; i < std::min(names.size(), kMaxNames); ++i)
        text += (i == 0 ? "" : ", ") + names[i];
    if (names.size() > kMaxNames) text += fmt::format(" and {} more", names.size() - kMaxNames);
    return text;
}

}  // namespace tavora::studio
