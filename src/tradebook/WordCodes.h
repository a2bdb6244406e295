// A numbered set of texts, for columns in which few texts stand in many rows.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Dravel {

// Numbers 0, 1, 2, ... in the order in which the words came.
class WordCodes {
 public:
    // The word's number, made for it when it is new.
    std::uint32_t CodeOf(std::string_view word);
    std::string_view operator[](std::uint32_t code) const;
    std::uint32_t Size() const { return static_cast<std::uint32_t>(ends_.size()); }
    std::size_t Bytes() const;

 private:
    struct Place {
        std::uint32_t hash = 0;
        std::uint32_t code = 0;  // the word's number and one, 0: a free place
    };
    void Grow();

    std::string text_;                 // the words one behind another
    std::vector<std::uint32_t> ends_;  // in text_
    std::vector<Place> table_;         // a power of two, at most half of it used
    std::uint32_t last_ = 0;           // the word asked for last: rows repeat the row before
};

}  // namespace Dravel
