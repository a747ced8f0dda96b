#include "studio/util/unique_names.h"

#include "studio/util/text.h"

namespace tavora::studio {
std::string UniqueNames::unique(const std::string& wanted) {
    std::string name(cutText(wanted, maxBytes_));
    for (int number = 2; !given_.insert(name).second; ++number) {
        const std::string suffix = " " + std::to_string(number);
        const std::size_t maxLength =
            maxBytes_ == std::string::npos ? maxBytes_ : maxBytes_ - suffix.size();
        name = std::string(cutText(wanted, maxLength)) + suffix;
    }
    return name;
}

}  // namespace tavora::studio
