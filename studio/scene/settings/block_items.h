#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "persist/stored_fields.h"
#include "studio/link/state_block.h"

namespace tavora::studio {

/// Reads a block from its start, item by item. Each function throws Fault::Scene
/// that names `field` at the end of the block or at an item of another kind.
class BlockItems {
  public:
    /// Reads the version that every block opens with.
    explicit BlockItems(const StateBlock& block);

    std::int32_t integer(std::string_view field);
    float number(std::string_view field);
    const std::string& text(std::string_view field);

    /// Whether blocks of this version hold `field`.
    bool hold(const StoredField& field) const { return version_ >= field.firstVersion; }
    bool isVersion1() const { return version_ == 1; }

  private:
    template <class Item>
    const Item& next(std::string_view field);

    const StateBlock& block_;
    std::size_t next_ = 0;
    std::int32_t version_;
};

}  // namespace tavora::studio
