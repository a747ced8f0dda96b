#include "studio/link/state_block.h"

#include <algorithm>
#include <cstring>

namespace tavora::studio {
namespace {

StateBlock& blockOf(void* data) {
    return *static_cast<StateBlock*>(data);
}

void writeInt(void* data, const std::int32_t* values, int count) {
    for (int i = 0; i < count; ++i)
        blockOf(data).emplace_back(values[i]);
}

void writeFloat(void* data, const float* values, int count) {
    for (int i = 0; i < count; ++i)
        blockOf(data).emplace_back(values[i]);
}

void writeString(void* data, const char* text) {
    blockOf(data).emplace_back(std::string(text == nullptr ? "" : text));
}

}  // namespace

BlockWriter::BlockWriter(StateBlock& block)
    : record_{HOST_IO_OBJECT, &block, writeInt, writeFloat, writeString} {}

BlockReader::BlockReader(const StateBlock& block)
    : block_(&block), record_{HOST_IO_OBJECT, this, readInt, readFloat, readString} {}

template <typename T>
int BlockReader::take(T* values, int count) {
    for (int taken = 0; taken < count; ++taken) {
        const T* item = next_ < block_->size() ? std::get_if<T>(&(*block_)[next_]) : nullptr;
        if (item == nullptr) {
            next_ = block_->size();
            return taken;
        }
        values[taken] = *item;
        ++next_;
    }
    return std::max(count, 0);
}

int BlockReader::readInt(void* self, std::int32_t* values, int count) {
    return static_cast<BlockReader*>(self)->take(values, count);
}

int BlockReader::readFloat(void* self, float* values, int count) {
    return static_cast<BlockReader*>(self)->take(values, count);
}

int BlockReader::readString(void* self, char* buffer, int capacity) {
    if (capacity <= 0) return 0;
    std::string text;
    if (static_cast<BlockReader*>(self)->take(&text, 1) == 0) return 0;
    const std::size_t length = std::min(text.size(), static_cast<std::size_t>(capacity) - 1);
    std::memcpy(buffer, text.data(), length);
    buffer[length] = '\0';
    return 1;
}

}  // namespace tavora::studio
