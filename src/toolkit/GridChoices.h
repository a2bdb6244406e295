// The drop-down list of a cell's editor without its window: what can be chosen, what is chosen, what is in
// view, and type-ahead.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Dravel {

// A longer choice is cut.
inline constexpr std::size_t kMaxChoiceBytes = 1000;

enum class GridChoiceKey : std::uint8_t { Up, Down, PageUp, PageDown, First, Last };

// Nothing here costs more with many choices but Find, which looks at the first letters of each.
class GridChoices {
 public:
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    // Nothing is chosen then, and the view is at the top.
    void Set(std::vector<std::string> choices);
    std::size_t Count() const { return choices_.size(); }
    bool Empty() const { return choices_.empty(); }
    const std::string& operator[](std::size_t index) const { return choices_[index]; }

    // The first one that begins with the text, letter case (of ASCII) aside; kNone also for an empty text.
    std::size_t Find(std::string_view typed) const;

    std::size_t Chosen() const { return chosen_; }
    void Choose(std::size_t index);  // and brings it into view; one that does not exist: none
    void Key(GridChoiceKey key);     // without a chosen one the first key only makes one

    std::size_t Page() const { return page_; }
    void SetPage(std::size_t rows);  // rows in view, at least 1
    std::size_t Top() const { return top_; }
    std::size_t MaxTop() const { return Count() > page_ ? Count() - page_ : 0; }
    void SetTop(std::int64_t top);  // brought into range

 private:
    std::vector<std::string> choices_;
    std::size_t chosen_ = kNone, top_ = 0, page_ = 1;
};

}  // namespace Dravel
