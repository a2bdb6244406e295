#include "tradebook/WordCodes.h"

#include <cstring>

namespace Dravel {

static std::uint64_t Part(const char* at) {
    std::uint64_t part = 0;
    std::memcpy(&part, at, sizeof(part));
    return part;
}

// Each eight bytes count with a factor of their own, so that no multiplication waits for another.
std::uint32_t WordCodes::HashOf(const char* word) const {
    std::uint64_t factor = 0x9E3779B97F4A7C15, hash = 0;
    for (std::size_t at = 0; at < width_; at += 8, factor += 0xD1B54A32D192ED02) {
        const std::uint64_t part = Part(word + at);
        hash += (part ^ part >> 32) * factor;
    }
    return static_cast<std::uint32_t>(hash >> 32);
}

bool WordCodes::Same(const char* a, const char* b) const {
    std::uint64_t different = 0;
    for (std::size_t at = 0; at < width_; at += 8)
        different |= Part(a + at) ^ Part(b + at);
    return different == 0;
}

std::uint32_t WordCodes::CodeOf(std::string_view word) {
    if (2 * (lengths_.size() + 1) > table_.size()) Grow();
    const std::uint32_t hash = HashOf(word.data());
    const std::size_t mask = table_.size() - 1;
    std::size_t at = hash & mask;
    for (; table_[at].code != 0; at = (at + 1) & mask) {
        const std::uint32_t code = table_[at].code - 1;
        if (table_[at].hash == hash && Same(text_.data() + code * width_, word.data())) return code;
    }
    text_.insert(text_.end(), word.data(), word.data() + width_);
    lengths_.push_back(static_cast<std::uint8_t>(word.size()));
    table_[at] = {hash, Size()};
    return Size() - 1;
}

void WordCodes::Grow() {
    std::vector<Place> old(table_.empty() ? 64 : 2 * table_.size());
    old.swap(table_);
    const std::size_t mask = table_.size() - 1;
    for (const Place& place : old) {
        if (place.code == 0) continue;
        std::size_t at = place.hash & mask;
        while (table_[at].code != 0)
            at = (at + 1) & mask;
        table_[at] = place;
    }
}

std::size_t WordCodes::Bytes() const {
    return text_.capacity() + lengths_.capacity() + table_.capacity() * sizeof(Place);
}

}  // namespace Dravel
