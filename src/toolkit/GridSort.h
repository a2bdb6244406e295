// The sort keys of a grid, most important first, as its header shows them. The rows themselves are put in
// order by the owner of the rows.
#pragma once

#include <cstdint>
#include <vector>

namespace Dravel {

struct GridSortKey {
    int column = 0;
    bool ascending = true;
    bool operator==(const GridSortKey&) const = default;
};

class GridSort {
 public:
    // Without `multiple` the column becomes the only key, with it the last one or it changes where it stands.
    void Set(int column, bool ascending, bool multiple);
    void Remove(int column);
    void Clear() { keys_.clear(); }
    // A click on the header: ascending, descending, off. With `multiple` the other keys stay.
    void Click(int column, bool multiple);

    const std::vector<GridSortKey>& Keys() const { return keys_; }
    bool Sorted() const { return !keys_.empty(); }
    int Direction(int column) const;  // 1 ascending, -1 descending, 0 not sorted
    int Ordinal(int column) const;    // 1 for the most important key, 0 not sorted

 private:
    std::vector<GridSortKey> keys_;
};

}  // namespace Dravel
