#pragma once

#include <cstdint>
#include <unordered_map>

namespace tavora::studio {

/// Live objects by the identity that modules know them by. Identities point at
/// nothing and are never given twice, so one that outlived its object is told
/// from those of others. One for each kind of object.
template <class Object, class Id>
class Handles {
  public:
    /// An identity for an object to be made.
    Id next() { return reinterpret_cast<Id>(++last_); }  // NOLINT(performance-no-int-to-ptr)
    void add(Id id, Object& object) { live_[id] = &object; }
    void remove(Id id) { live_.erase(id); }

    /// Null for what is not, or no longer, there.
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
