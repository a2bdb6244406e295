#include "toolkit/GridSort.h"

#include <algorithm>

namespace Dravel {

void GridSort::Set(int column, bool ascending, bool multiple) {
    const auto found = std::find_if(keys_.begin(), keys_.end(),
                                    [&](const GridSortKey& key) { return key.column == column; });
    if (!multiple) {
        keys_.assign(1, {column, ascending});
    } else if (found != keys_.end()) {
        found->ascending = ascending;
    } else {
        keys_.push_back({column, ascending});
    }
}

void GridSort::Remove(int column) {
    std::erase_if(keys_, [&](const GridSortKey& key) { return key.column == column; });
}

void GridSort::Click(int column, bool multiple) {
    const int direction = Direction(column);
    if (direction >= 0) {
        Set(column, direction == 0, multiple);
    } else if (multiple) {
        Remove(column);
    } else {
        Clear();
    }
}

int GridSort::Direction(int column) const {
    const int ordinal = Ordinal(column);
    if (ordinal == 0) return 0;
    return keys_[static_cast<std::size_t>(ordinal) - 1].ascending ? 1 : -1;
}

int GridSort::Ordinal(int column) const {
    const auto found = std::find_if(keys_.begin(), keys_.end(),
                                    [&](const GridSortKey& key) { return key.column == column; });
    return found == keys_.end() ? 0 : static_cast<int>(found - keys_.begin()) + 1;
}

}  // namespace Dravel
