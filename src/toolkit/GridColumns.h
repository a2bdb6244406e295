// The columns of a grid: what they show, how wide, and in which order they stand on the screen.
#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Dravel {

// The numbers are those kept in column profiles.
enum class GridAlign : std::uint8_t { Left = 0, Right = 1, Centre = 2 };

// A width may be 1, as profiles keep it; the mouse makes none below kMinDraggedWidth, which it could not
// catch again.
inline constexpr int kMinColumnWidth = 1, kMinDraggedWidth = 8, kMaxColumnWidth = 2048;

struct GridColumn {
    std::string key;
    std::string header;  // ANSI code page
    int width = 60;      // pixels at 96 dpi
    GridAlign align = GridAlign::Left;
    bool visible = true;
    bool locked = false;  // keeps its place and width under the mouse
};

// A column's number is its place of insertion and never changes; its position is its place among the shown
// columns, from the left, and -1 for a hidden one. Numbers and positions that do not exist change nothing.
class GridColumns {
 public:
    int Add(GridColumn column);  // returns its number; a visible one goes to the right end
    void Clear();

    int Count() const { return static_cast<int>(columns_.size()); }
    const GridColumn& operator[](int column) const { return columns_[static_cast<std::size_t>(column)]; }
    int Find(std::string_view key) const;  // -1: none

    void SetHeader(int column, std::string_view header);
    void SetWidth(int column, int width);  // pixels at 96 dpi, brought into kMinColumnWidth..kMaxColumnWidth
    void SetAlign(int column, GridAlign align);
    void SetVisible(int column, bool visible);  // one that is shown goes to the right end
    void SetLocked(int column, bool locked);

    int ShownCount() const { return static_cast<int>(shown_.size()); }
    int AtPosition(int position) const;  // column number, -1: no such position
    int Position(int column) const;
    void Move(int column, int position);  // position brought into range
    // Where a column that the mouse drags to `position` may go: as near as it comes without moving a locked
    // one. A locked column stays where it is; -1: hidden.
    int DragTarget(int column, int position) const;
    // One entry a column number: its position, -1 hidden. Setting one shows and hides accordingly; gaps and
    // doubles are closed up in order of position, then number; a missing tail is taken as hidden.
    std::vector<std::int32_t> OrderArray() const;
    void SetOrderArray(std::span<const std::int32_t> order);

    // The first `count` shown columns stay while the others scroll, as far as they fit into the room set:
    // frozen columns over the whole width would leave the others out of reach.
    void SetFrozen(int count);
    void SetFrozenRoom(int pixels);
    int Frozen() const { return frozenFits_; }

    // Geometry in pixels at the resolution set, unscrolled, from the left edge of position 0.
    void SetDpi(int dpi);
    int Dpi() const { return dpi_; }
    int Left(int position) const;  // of ShownCount(): the right edge of the last one
    int PixelWidth(int position) const { return Left(position + 1) - Left(position); }
    void SetPixelWidth(int position, int pixels);
    int TotalWidth() const { return Left(ShownCount()); }
    int FrozenWidth() const { return Left(Frozen()); }
    int PositionAt(int x) const;  // -1: outside

 private:
    GridColumn* At(int column);  // null: no such column
    void Layout();

    std::vector<GridColumn> columns_;
    std::vector<int> shown_;     // column numbers by position
    std::vector<int> lefts_{0};  // by position, one more for the end
    int frozen_ = 0;             // as set
    int frozenFits_ = 0;         // as it is in effect
    int frozenRoom_ = std::numeric_limits<int>::max();
    int dpi_ = 96;
};

}  // namespace Dravel
