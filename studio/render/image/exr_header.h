#pragma once

#include <string_view>

namespace tavora::studio {

/// Rows that an EXR file with the compression used here has in a chunk.
inline constexpr int kExrChunkRows = 16;

/// Whether an EXR file begins as the files written here do, and with nothing that would have
/// the library that reads it take more memory than such a file is worth: it believes what
/// a header says of lengths and sizes before it has read what they are of.
bool isSoundExrHeader(std::string_view bytes);

}  // namespace tavora::studio
