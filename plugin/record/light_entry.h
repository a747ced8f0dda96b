#pragma once

#include <cstddef>

namespace tavora {

/// Room for a light's name, its closing NUL included.
inline constexpr std::size_t lightNameSize = 80;

/// One light that the user chose, in the order of choice.
struct LightEntry {
    char name[lightNameSize];  ///< the light's item name, NUL-terminated UTF-8
    LightEntry* next;
};

/// Writes a light's name into an entry's room. A longer one is cut, never inside
/// a UTF-8 character.
void copyLightName(const char* name, char (&room)[lightNameSize]);

/// The entry of a light, in no list, its name cut by copyLightName().
LightEntry lightNamed(const char* name);

}  // namespace tavora
