// What the user typed into a grid's filter bar, a text a column. Which rows a text hides is the owner's rule.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Dravel {

class GridFilter {
 public:
    // The entry that stands for "no filter"; it is the hint of an empty field, too.
    void SetHint(std::string_view hint) { hint_ = hint; }
    const std::string& Hint() const { return hint_; }

    bool Shown() const { return shown_; }  // a hidden bar filters nothing, and keeps its texts
    void Show(bool shown) { shown_ = shown; }

    // True when it changed.
    bool Set(int column, std::string_view text) {
        const auto index = static_cast<std::size_t>(column);
        if (column < 0 || Text(column) == text) return false;
        if (index >= texts_.size()) texts_.resize(index + 1);
        texts_[index] = text;
        return true;
    }
    const std::string& Text(int column) const {
        static const std::string none;
        const auto index = static_cast<std::size_t>(column);
        return column < 0 || index >= texts_.size() ? none : texts_[index];
    }
    // Whether a column's text filters at all now: empty ones and the hint do not.
    bool Active(int column) const { return shown_ && !Text(column).empty() && Text(column) != hint_; }
    void Clear() { texts_.clear(); }

 private:
    std::vector<std::string> texts_;
    std::string hint_;
    bool shown_ = false;
};

}  // namespace Dravel
