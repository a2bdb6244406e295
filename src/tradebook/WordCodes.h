// A numbered set of texts, for columns in which few texts stand in many rows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace Dravel {

// Words of at most `width` bytes, none of them zero; numbers 0, 1, 2, ... in the order in which they came.
//
// Words are kept and compared with zeros behind them up to the width: a loop of fixed length, as the
// processor cannot foresee where one of changing length ends.
class WordCodes {
 public:
    // A multiple of 8.
    explicit WordCodes(std::size_t width) : width_(width) {}

    // The word's number, made for it when it is new. Behind the word stand zeros up to the width.
    std::uint32_t CodeOf(std::string_view word);
    std::string_view operator[](std::uint32_t code) const {
        return {text_.data() + code * width_, lengths_[code]};
    }
    std::uint32_t Size() const { return static_cast<std::uint32_t>(lengths_.size()); }
    std::size_t Bytes() const;

 private:
    struct Place {
        std::uint32_t hash = 0;
        std::uint32_t code = 0;  // the word's number and one, 0: a free place
    };
    std::uint32_t HashOf(const char* word) const;
    bool Same(const char* a, const char* b) const;
    void Grow();

    std::size_t width_;
    std::vector<char> text_;  // the words, each filled up to the width
    std::vector<std::uint8_t> lengths_;
    std::vector<Place> table_;  // a power of two, at most half of it used
};

}  // namespace Dravel
