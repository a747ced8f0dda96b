#pragma once

#include <cstdint>
#include <unordered_map>

namespace tavora::studio {

/// Maps the identities that modules use to existing objects, of one kind. Identities are no
/// addresses and are never reused, so that the identity of a deleted object is recognized.
template <class Object, class Id>
class Handles {
  public:
    /// A new identity, for add().
    Id next() { return reinterpret_cast<Id>(++last_); }  // NOLINT(performance-no-int-to-ptr)
    void add(Id id, Object& object) { live_[id] = &object; }
    void remove(Id id) { live_.erase(id); }

    /// Null for an unknown identity, or one of a removed object.
    Object* find(Id id) const {
        const auto found = live_.find(id);
        return found == live_.end() ? nullptr : found->second;
    }

    const std::unordered_map<Id, Object*>& all() const { return live_; }

  private:
    std::unordered_map<Id, Object*> live_;
    std::uintptr_t last_ = 0;
};

}  // namespace tavora::studio
