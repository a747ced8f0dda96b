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

/// Builds a light list at its tail; frees what nobody took.
class LightListBuilder {
  public:
    LightListBuilder() = default;
    LightListBuilder(const LightListBuilder&) = delete;
    LightListBuilder& operator=(const LightListBuilder&) = delete;
    ~LightListBuilder();

    /// Appends a light, its name cut by copyLightName(). False when memory runs out; the list is
    /// then as it was.
    bool append(const char* name);

    /// The list, from now on the caller's to free with freeLights().
    LightEntry* take();

  private:
    LightEntry* head_ = nullptr;
    LightEntry* tail_ = nullptr;
};

/// Frees a light list from its head; null is an empty list.
void freeLights(LightEntry* head);

}  // namespace tavora
