#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "host/state.h"

namespace tavora::testing {

/// One value of a state block: 'i' or 'f' with its bits, so that values that
/// are not numbers compare too, or 's' with its text.
struct StateItem {
    char kind;
    std::uint32_t bits;
    std::string text;

    bool operator==(const StateItem&) const = default;
};

StateItem integerItem(std::int32_t value);
StateItem floatItem(float value);
StateItem stringItem(std::string text);

using StateItems = std::vector<StateItem>;

/// What Save writes for the record.
StateItems save(HostInstance instance);

/// Lets Load read the first `length` items. Another kind of item than asked for
/// ends the block.
void load(HostInstance instance, const StateItems& items, std::size_t length = SIZE_MAX);

}  // namespace tavora::testing
