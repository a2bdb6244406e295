// The columns by which a grid groups its rows, outermost first.
#pragma once

#include <algorithm>
#include <vector>

namespace Dravel {

class GridGroups {
 public:
    const std::vector<int>& Columns() const { return columns_; }
    bool Grouped() const { return !columns_.empty(); }
    int Position(int column) const {  // -1: not grouped by it
        const auto found = std::find(columns_.begin(), columns_.end(), column);
        return found == columns_.end() ? -1 : static_cast<int>(found - columns_.begin());
    }
    // As the innermost; one that is there stays where it is.
    void Add(int column) {
        if (Position(column) < 0) columns_.push_back(column);
    }
    void Remove(int column) { std::erase(columns_, column); }
    void Clear() { columns_.clear(); }

 private:
    std::vector<int> columns_;
};

}  // namespace Dravel
