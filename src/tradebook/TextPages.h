// Many short texts one behind another, to be searched as one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "tradebook/OrderKeys.h"

namespace Dravel {

// Texts 0, 1, 2, ... of at most kLongest bytes, none of them zero. In pages of kPage texts, each text ended
// by a zero byte, so that a search that finds nothing touches nothing but text, and a text that changes costs
// one page.
class TextPages {
 public:
    static constexpr std::size_t kPage = 512, kLongest = 64;

    void Add(std::string_view text);  // cut to kLongest
    void Replace(std::size_t number, std::string_view text);
    std::string_view operator[](std::size_t number) const;
    std::size_t Size() const { return size_; }
    std::size_t Pages() const { return pages_.size(); }

    // Sets marks[i] to 1 for each text i of the page that contains `needle`, which is not empty. `marks` has
    // kPage entries.
    void Mark(std::size_t page, std::string_view needle, std::uint8_t* marks) const;

    // Keys that order the texts by their bytes, a text before those that it begins. Only bytes that differ
    // between texts enter a key, in as few bits as their number asks for, so that times and numbered
    // identifiers fit as a whole.
    OrderKeys Keys() const;

    std::size_t Bytes() const;

 private:
    static constexpr std::size_t kStrip = 64;  // bytes looked at together
    static constexpr std::size_t kPadding = kStrip + kLongest;
    struct Page {
        std::vector<char> bytes;          // at least kPadding zeros behind the last text
        std::vector<std::uint16_t> ends;  // where the zero byte of each text stands

        std::size_t Begin(std::size_t i) const { return i == 0 ? 0 : ends[i - 1] + std::size_t{1}; }
        std::string_view Text(std::size_t i) const { return {bytes.data() + Begin(i), ends[i] - Begin(i)}; }
        std::size_t End() const { return Begin(ends.size()); }
        void Add(std::string_view text);
        void Close();
    };

    std::vector<Page> pages_;
    std::size_t size_ = 0;
};

}  // namespace Dravel
