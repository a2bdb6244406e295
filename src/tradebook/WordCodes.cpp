#include "tradebook/WordCodes.h"

#include <cstring>

namespace Dravel {

namespace {

std::uint32_t HashOf(std::string_view word) {
    constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15;
    std::uint64_t hash = word.size() * kOdd;
    for (std::size_t at = 0; at < word.size(); at += 8) {
        std::uint64_t part = 0;
        std::memcpy(&part, word.data() + at, word.size() - at < 8 ? word.size() - at : 8);
        hash = (hash ^ part) * kOdd;
        hash ^= hash >> 32;
    }
    return static_cast<std::uint32_t>(hash);
}

}  // namespace

std::string_view WordCodes::operator[](std::uint32_t code) const {
    const std::size_t begin = code == 0 ? 0 : ends_[code - 1];
    return {text_.data() + begin, ends_[code] - begin};
}

std::uint32_t WordCodes::CodeOf(std::string_view word) {
    if (last_ < Size() && (*this)[last_] == word) return last_;
    if (2 * (ends_.size() + 1) > table_.size()) Grow();
    const std::uint32_t hash = HashOf(word);
    const std::size_t mask = table_.size() - 1;
    std::size_t at = hash & mask;
    for (; table_[at].code != 0; at = (at + 1) & mask) {
        if (table_[at].hash == hash && (*this)[table_[at].code - 1] == word)
            return last_ = table_[at].code - 1;
    }
    last_ = Size();
    text_ += word;
    ends_.push_back(static_cast<std::uint32_t>(text_.size()));
    table_[at] = {hash, last_ + 1};
    return last_;
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
    return text_.capacity() + ends_.capacity() * sizeof(std::uint32_t) + table_.capacity() * sizeof(Place);
}

}  // namespace Dravel
