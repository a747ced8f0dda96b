#include "studio/util/unique_names.h"

namespace tavora::studio {
namespace {

std::string cut(const std::string& name, std::size_t bytes) {
    if (name.size() <= bytes) return name;
    std::size_t end = bytes;
    while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xC0U) == 0x80U)
        --end;
    return name.substr(0, end);
}

}  // namespace

std::string UniqueNames::unique(const std::string& wanted) {
    std::string name = cut(wanted, mostBytes_);
    for (int number = 2; !given_.insert(name).second; ++number) {
        const std::string suffix = " " + std::to_string(number);
        name =
            cut(wanted, mostBytes_ == std::string::npos ? mostBytes_ : mostBytes_ - suffix.size()) +
            suffix;
    }
    return name;
}

}  // namespace tavora::studio
