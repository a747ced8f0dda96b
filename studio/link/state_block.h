#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "host/state.h"

namespace tavora::studio {

/// One item of a plug-in's saved settings.
using StateItem = std::variant<std::int32_t, float, std::string>;

/// A plug-in's settings, as the sequence of items that it saved; items that are saved in a group
/// are separate here. Plain data.
using StateBlock = std::vector<StateItem>;

/// A save-state record that appends to a block, which must outlive it. One thread at a time.
class BlockWriter {
  public:
    explicit BlockWriter(StateBlock& block);
    BlockWriter(const BlockWriter&) = delete;
    BlockWriter& operator=(const BlockWriter&) = delete;

    const HostSaveState* record() const { return &record_; }

  private:
    HostSaveState record_;
};

/// A load-state record that reads a block, which must outlive it, from its start. Reading an item
/// as another kind than it has ends the stream; this also holds for an integer read as a float.
/// One thread at a time.
class BlockReader {
  public:
    explicit BlockReader(const StateBlock& block);
    BlockReader(const BlockReader&) = delete;
    BlockReader& operator=(const BlockReader&) = delete;

    const HostLoadState* record() const { return &record_; }

  private:
    template <typename T>
    int take(T* values, int count);
    static int readInt(void* self, std::int32_t* values, int count);
    static int readFloat(void* self, float* values, int count);
    static int readString(void* self, char* buffer, int capacity);

    const StateBlock* block_;
    std::size_t next_ = 0;
    HostLoadState record_;
};

}  // namespace tavora::studio
