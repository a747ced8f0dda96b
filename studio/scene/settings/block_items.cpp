#include "studio/scene/settings/block_items.h"

#include <fmt/format.h>

#include "studio/util/error.h"

namespace tavora::studio {

template <class Item>
const Item& BlockItems::next(std::string_view field) {
    const bool ended = next_ >= block_.size();
    const Item* item = ended ? nullptr : std::get_if<Item>(&block_[next_]);
    if (item == nullptr) {
        throw Error(Fault::Scene, fmt::format("stored settings are damaged: they {} at {}",
                                              ended ? "end" : "hold something else", field));
    }
    ++next_;
    return *item;
}

BlockItems::BlockItems(const StateBlock& block) : block_(block), version_(integer("version")) {}

std::int32_t BlockItems::integer(std::string_view field) {
    return next<std::int32_t>(field);
}
float BlockItems::number(std::string_view field) {
    return next<float>(field);
}
const std::string& BlockItems::text(std::string_view field) {
    return next<std::string>(field);
}

}  // namespace tavora::studio
