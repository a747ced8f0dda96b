#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/state.h"

namespace tavora::studio {

// A block as bytes of a settings file: an eight-byte mark, then for each item
// its kind ('i', 'f', 's') and its value, little-endian, 4 bytes; strings by
// length and bytes.

/// A save-state record that appends to the bytes of a file.
/// One thread at a time.
class EncodingWriter {
  public:
    EncodingWriter();
    EncodingWriter(const EncodingWriter&) = delete;
    EncodingWriter& operator=(const EncodingWriter&) = delete;

    const HostSaveState* record() const { return &record_; }
    /// The file as far as it was written.
    const std::string& bytes() const { return bytes_; }

  private:
    HostSaveState record_;
    std::string bytes_;
};

/// A load-state record that reads the bytes of a file item by item; it holds
/// nothing beside them. The stream ends at the first item that is cut off or of
/// another kind than asked for, and at once without the mark.
/// One thread at a time.
class EncodingReader {
  public:
    explicit EncodingReader(std::string bytes);
    EncodingReader(const EncodingReader&) = delete;
    EncodingReader& operator=(const EncodingReader&) = delete;

    const HostLoadState* record() const { return &record_; }

  private:
    std::optional<std::string_view> takeBytes(std::size_t size);
    std::optional<std::uint32_t> takeWord();
    std::optional<std::uint32_t> takeItem(char kind);
    template <typename T>
    int take(char kind, T* values, int count);
    static int readInt(void* self, std::int32_t* values, int count);
    static int readFloat(void* self, float* values, int count);
    static int readString(void* self, char* buffer, int capacity);

    HostLoadState record_;
    std::string bytes_;
    std::string_view rest_;  ///< what of bytes_ is still to be read
};

}  // namespace tavora::studio
