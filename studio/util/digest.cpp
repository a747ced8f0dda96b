#include "studio/util/digest.h"

#include <cstdint>
#include <fmt/format.h>
#include <new>
#include <xxhash.h>

namespace tavora::studio {

struct Digest::State {
    struct Free {
        void operator()(XXH3_state_t* state) const { XXH3_freeState(state); }
    };
    std::unique_ptr<XXH3_state_t, Free> xxh{XXH3_createState()};
};

Digest::Digest() : state_(std::make_unique<State>()) {
    if (state_->xxh == nullptr) throw std::bad_alloc();
    XXH3_128bits_reset(state_->xxh.get());
}

Digest::~Digest() = default;

void Digest::add(std::string_view bytes) {
    const std::uint64_t size = bytes.size();
    XXH3_128bits_update(state_->xxh.get(), bytes.data(), bytes.size());
    XXH3_128bits_update(state_->xxh.get(), &size, sizeof(size));
}

std::string Digest::text() const {
    const XXH128_hash_t hash = XXH3_128bits_digest(state_->xxh.get());
    return fmt::format("{:016x}{:016x}", hash.high64, hash.low64);
}

}  // namespace tavora::studio
