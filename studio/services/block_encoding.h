#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/state.h"

namespace tavora::studio {

// The format of a settings file: an eight-byte signature, then for each item of the block its
// kind ('i', 'f', 's') and its value, 4 bytes, little-endian. The value of a string is its
// length, and its bytes follow.

/// A save-state record that writes the bytes of a file to memory. One thread at a time.
class EncodingWriter {
  public:
    EncodingWriter();
    EncodingWriter(const EncodingWriter&) = delete;
    EncodingWriter& operator=(const EncodingWriter&) = delete;

    const HostSaveState* record() const { return &record_; }
    /// What was written so far.
    const std::string& bytes() const { return bytes_; }

  private:
    HostSaveState record_;
    std::string bytes_;
};

/// A load-state record that reads the bytes of a file item by item, without decoding them
/// beforehand. The stream ends at the first item that is truncated or of another kind than
/// the caller reads, and at once when the signature is wrong. One thread at a time.
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
    std::string_view rest_;  ///< the part of bytes_ that was not read yet
};

}  // namespace tavora::studio
