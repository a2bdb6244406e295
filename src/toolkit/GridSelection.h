// Selected rows of a grid as sorted ranges that neither touch nor overlap, so that a million selected rows
// cost one range.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

namespace Dravel {

inline constexpr std::uint32_t kNoRow = 0xFFFFFFFF;

struct GridRange {
    std::uint32_t first = 0, last = 0;  // both belong to it
    std::uint32_t Count() const { return last - first + 1; }
    bool operator==(const GridRange&) const = default;
};

class GridSelection {
 public:
    const std::vector<GridRange>& Ranges() const { return ranges_; }
    bool Empty() const { return ranges_.empty(); }
    std::uint32_t RowCount() const;
    bool Contains(std::uint32_t row) const;

    void Clear() { ranges_.clear(); }
    void Set(GridRange range);
    void Add(GridRange range);
    void Remove(GridRange range);
    void Toggle(std::uint32_t row);

    bool operator==(const GridSelection&) const = default;

    // The rows of the grid changed; the selection stays on the same ones. O(number of ranges). Rows inserted
    // inside a range are not selected.
    void RowsInserted(std::uint32_t at, std::uint32_t count);
    void RowsRemoved(std::uint32_t at, std::uint32_t count);
    void RowsSwapped(std::uint32_t a, std::uint32_t b);
    // `newRow` gives a row's new place or kNoRow. O(selected rows).
    void RowsReordered(const std::function<std::uint32_t(std::uint32_t)>& newRow);

 private:
    std::vector<GridRange> ranges_;
};

}  // namespace Dravel
