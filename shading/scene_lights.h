#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "plugin/record/services.h"
#include "shading/light_name.h"

namespace tavora {

/// The scene's lights in the host's order, for one evaluation: the host is
/// asked for each light and each name at most once, and not before it is
/// needed, however often the lights are walked. Lights beyond the `capacity`
/// first are asked for in every walk. Needs the item service.
class SceneLights {
  public:
    static constexpr std::size_t capacity = 128;

    SceneLights() = default;
    SceneLights(const SceneLights&) = delete;
    SceneLights& operator=(const SceneLights&) = delete;

    /// Shows `visit` every light until it returns false.
    template <class Visit>
    void each(Visit visit) {
        HostItemId light = at(0, nullptr);
        for (std::size_t i = 1; light != nullptr && visit(light); ++i)
            light = at(i, light);
    }

    /// Shows `visit` every light of exactly this name until it returns false.
    template <class Visit>
    void eachNamed(const char* text, Visit visit) {
        if (!visitKnown(text, visit)) return;
        std::size_t i = named_;
        HostItemId light = at(i, i == 0 ? nullptr : lights_[i - 1]);
        for (; light != nullptr; light = at(++i, light)) {
            const char* name = iteminfo->name(light);
            if (i < capacity) names_[named_++] = name;
            if (isSame(name, text) && !visit(light)) return;
        }
    }

  private:
    /// Up to so many lights plain comparison is cheaper than making keys.
    static constexpr std::size_t few = 8;

    /// The light at a place, null behind the last; `before` is the one before it.
    HostItemId at(std::size_t index, HostItemId before) {
        if (index < count_) return lights_[index];
        HostItemId light =
            index == 0 ? iteminfo->first(HOST_ITEM_LIGHT, nullptr) : iteminfo->next(before);
        if (index < capacity) lights_[count_++] = light;
        return light;
    }

    static bool isSame(const char* name, const char* text) {
        return name != nullptr && std::strcmp(name, text) == 0;
    }

    /// False when `visit` has enough.
    template <class Visit>
    bool visitKnown(const char* text, Visit visit) {
        const bool keyed = named_ > few;
        if (keyed) makeKeys();
        const std::uint64_t key = keyed ? lightNameKey(text) : 0;
        for (std::size_t i = 0; i < named_; ++i) {
            if (keyed && keys_[i] != key) continue;
            if (isSame(names_[i], text) && !visit(lights_[i])) return false;
        }
        return true;
    }

    void makeKeys() {
        for (; keyed_ < named_; ++keyed_)
            keys_[keyed_] = names_[keyed_] != nullptr ? lightNameKey(names_[keyed_]) : 0;
    }

    // Filled as the host is asked: the first `count_` lights, the null behind
    // the last included, the first `named_` names, the first `keyed_` keys.
    std::array<HostItemId, capacity> lights_;
    std::array<const char*, capacity> names_;
    std::array<std::uint64_t, capacity> keys_;
    std::size_t count_ = 0;
    std::size_t named_ = 0;
    std::size_t keyed_ = 0;
};

}  // namespace tavora
