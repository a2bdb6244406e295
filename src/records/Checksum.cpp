#include "records/Checksum.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

namespace Dravel {

struct RunningChecksum::State {
    XXH3_state_t xxh;
};

std::uint64_t Checksum(const void* bytes, std::size_t count) noexcept {
    return XXH3_64bits(bytes, count);
}

RunningChecksum::RunningChecksum() : state_(std::make_unique<State>()) {
    XXH3_64bits_reset(&state_->xxh);
}

RunningChecksum::~RunningChecksum() = default;

void RunningChecksum::Add(const void* bytes, std::size_t count) noexcept {
    XXH3_64bits_update(&state_->xxh, bytes, count);
    length_ += count;
}

FileSum RunningChecksum::Sum() const noexcept {
    return {length_, XXH3_64bits_digest(&state_->xxh)};
}

}  // namespace Dravel
