// Which part of a grid its window shows: sizes, scroll positions, and what lies under a point. All in pixels
// of the window's client area; rows scroll by whole rows, columns by pixels.
#pragma once

#include "toolkit/Geometry.h"
#include "toolkit/GridColumns.h"
#include "toolkit/GridSelection.h"

namespace Dravel {

struct GridMetrics {
    int headerHeight = 22;
    int bandHeight = 0;  // what stands between header and rows (filter bar)
    int rowHeight = 18;
    int rowHeaderWidth = 9;
    bool operator==(const GridMetrics&) const = default;
};

// A group's head is one part over all columns, but for the box that opens and closes it.
enum class GridPart : std::uint8_t {
    Nothing,
    Corner,
    Header,
    Divider,
    Band,
    RowHeader,
    Cell,
    GroupHead,
    GroupBox
};
struct GridHit {
    GridPart part = GridPart::Nothing;
    std::uint32_t row = kNoRow;
    int column = -1;  // number, not position; of a divider: the column on its left
    bool operator==(const GridHit&) const = default;
};

class GridView {
 public:
    explicit GridView(const GridColumns& columns) : columns_(columns) {}

    void SetMetrics(const GridMetrics& metrics);
    const GridMetrics& Metrics() const { return metrics_; }
    void SetClient(int width, int height);
    void SetRowCount(std::uint32_t rows);
    std::uint32_t RowCount() const { return rows_; }

    std::uint32_t TopRow() const { return top_; }
    std::uint32_t MaxTopRow() const;
    void SetTopRow(std::int64_t row);  // brought into range
    int ScrollX() const { return scrollX_; }
    int MaxScrollX() const;
    void SetScrollX(std::int64_t x);  // brought into range
    void Clamp();                     // after columns changed

    int RowsTop() const { return metrics_.headerHeight + metrics_.bandHeight; }
    std::uint32_t PageRows() const;     // rows wholly visible, at least 1
    std::uint32_t VisibleEnd() const;   // one past the last row that shows at least in part
    int ScrollWidth() const;            // width of the part that scrolls sideways, at least 1
    bool EnsureRow(std::uint32_t row);  // true when the view moved
    bool EnsureColumn(int column);

    int RowTop(std::uint32_t row) const;  // of a row that shows
    // Where a column stands, cut nowhere; ClipLeft is where its visible part may begin.
    int ColumnLeft(int position) const;
    int ClipLeft(int position) const;
    Rect CellRect(std::uint32_t row, int column) const;  // empty when not in view; not cut by the frozen part
    // Where a column's field stands in the band, cut by the frozen part and the window; empty when there is
    // no band or too little of the column shows.
    Rect FieldRect(int column) const;
    // The box of a group's head, and where the head's text begins.
    Rect GroupBox(std::uint32_t row, int level) const;
    int GroupTextLeft(int level) const;
    GridHit HitTest(int x, int y) const;
    // What a hit on a row is when the row is the head of a group.
    GridHit OnGroupHead(const GridHit& hit, int x, int level) const;
    // As HitTest, but outside the rows gives the nearest row and shown column: for a drag that left the
    // window.
    GridHit Nearest(int x, int y) const;
    // Position before which a header dragged to `x` would be put.
    int DropPosition(int x) const;
    // The same for a column that the mouse drags, with what locked columns allow; -1: it would stay.
    int DropMark(int column, int x) const;

 private:
    int PositionAt(int x) const;
    int DividerAt(int x) const;

    const GridColumns& columns_;
    GridMetrics metrics_;
    int width_ = 0, height_ = 0;
    std::uint32_t rows_ = 0, top_ = 0;
    int scrollX_ = 0;
};

}  // namespace Dravel
