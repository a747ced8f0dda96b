#include "studio/util/unique_names.h"

#include "studio/util/text.h"

namespace tavora::studio {
std::string UniqueNames::unique(const std::string& wanted) {
    std::string name(cutText(wanted, mostBytes_));
    for (int number = 2; !given_.insert(name).second; ++number) {
        const std::string suffix = " " + std::to_string(number);
        const std::size_t most =
            mostBytes_ == std::string::npos ? mostBytes_ : mostBytes_ - suffix.size();
        name = std::string(cutText(wanted, most)) + suffix;
    }
    return name;
}

}  // namespace tavora::studio
