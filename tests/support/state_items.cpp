#include "tests/support/state_items.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <gtest/gtest.h>

#include "persist/state_block.h"

namespace tavora::testing {
namespace {

struct Source {
    const StateItems& items;
    std::size_t next;
    std::size_t end;

    const StateItem* take(char kind) {
        const bool fits = next < end && items[next].kind == kind;
        return fits ? &items[next++] : nullptr;
    }
};

template <class Value>
int readNumbers(void* data, char kind, Value* values, int count) {
    for (int i = 0; i < count; ++i) {
        const StateItem* item = static_cast<Source*>(data)->take(kind);
        if (item == nullptr) return i;
        values[i] = std::bit_cast<Value>(item->bits);
    }
    return count;
}

int readText(void* data, char* buffer, int capacity) {
    EXPECT_EQ(capacity, 150);
    const StateItem* item = static_cast<Source*>(data)->take('s');
    if (item == nullptr) return 0;
    std::strncpy(buffer, item->text.c_str(), static_cast<std::size_t>(capacity));
    buffer[capacity - 1] = '\0';
    return 1;
}

}  // namespace

StateItem integerItem(std::int32_t value) {
    return {'i', std::bit_cast<std::uint32_t>(value), ""};
}
StateItem floatItem(float value) {
    return {'f', std::bit_cast<std::uint32_t>(value), ""};
}
StateItem stringItem(std::string text) {
    return {'s', 0, std::move(text)};
}

StateItems save(HostInstance instance) {
    StateItems items;
    const HostSaveState state = {
        HOST_IO_SCENE, &items,
        [](void* data, const std::int32_t* values, int count) {
            for (int i = 0; i < count; ++i) {
                static_cast<StateItems*>(data)->push_back(integerItem(values[i]));
            }
        },
        [](void* data, const float* values, int count) {
            for (int i = 0; i < count; ++i) {
                static_cast<StateItems*>(data)->push_back(floatItem(values[i]));
            }
        },
        [](void* data, const char* text) {
            static_cast<StateItems*>(data)->push_back(stringItem(text));
        }};
    EXPECT_EQ(Save(instance, &state), nullptr);
    return items;
}

void load(HostInstance instance, const StateItems& items, std::size_t length) {
    Source source{items, 0, std::min(length, items.size())};
    const HostLoadState state = {
        HOST_IO_SCENE, &source,
        [](void* data, std::int32_t* values, int count) {
            return readNumbers(data, 'i', values, count);
        },
        [](void* data, float* values, int count) { return readNumbers(data, 'f', values, count); },
        readText};
    EXPECT_EQ(Load(instance, &state), nullptr);
}

}  // namespace tavora::testing
