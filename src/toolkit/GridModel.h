// A grid without its window: columns, sort marks, view, current cell and selection, and how keys, clicks and
// changes of the rows move them. User-interface thread.
#pragma once

#include "toolkit/GridColumns.h"
#include "toolkit/GridFilter.h"
#include "toolkit/GridGroups.h"
#include "toolkit/GridSelection.h"
#include "toolkit/GridSort.h"
#include "toolkit/GridView.h"

namespace Dravel {

enum class GridKey : std::uint8_t {
    Up,
    Down,
    Left,
    Right,
    Home,
    End,
    PageUp,
    PageDown,
    Space,
    A,
    Tab,
    Enter
};
struct GridModifiers {
    bool shift = false, ctrl = false;
};

class GridModel {
 public:
    GridModel() = default;
    GridModel(const GridModel&) = delete;
    GridModel& operator=(const GridModel&) = delete;

    GridColumns& Columns() { return columns_; }
    const GridColumns& Columns() const { return columns_; }
    GridSort& Sort() { return sort_; }
    const GridSort& Sort() const { return sort_; }
    GridFilter& Filter() { return filter_; }
    const GridFilter& Filter() const { return filter_; }
    GridGroups& Groups() { return groups_; }
    const GridGroups& Groups() const { return groups_; }
    GridView& View() { return view_; }
    const GridView& View() const { return view_; }
    const GridSelection& Selection() const { return selection_; }

    std::uint32_t RowCount() const { return view_.RowCount(); }
    std::uint32_t CurrentRow() const { return row_; }  // kNoRow: none
    int CurrentColumn() const { return column_; }      // number; -1: none

    // Makes a cell current, selects its row alone, and brings it into view. A row or column that does not
    // exist is none.
    void SetCurrent(std::uint32_t row, int column);
    // The same without touching selection and view.
    void MoveCurrent(std::uint32_t row, int column);
    void Select(GridRange range);  // alone; cut to the rows there are
    void AddSelection(GridRange range);
    void SelectAll();
    void ClearSelection();

    // A key as in a spreadsheet: Tab and Enter go right and down, with Shift the other way. False: not the
    // grid's (so Ctrl+Up and Ctrl+Down, which move rows and are the owner's).
    bool Key(GridKey key, GridModifiers modifiers);
    // A press of the left button on a cell or a row header.
    void Press(const GridHit& hit, GridModifiers modifiers);
    // The pointer moved with the button held: the selection spans from the anchor to the row.
    void DragTo(const GridHit& hit);

    // The rows changed. View, current row and selection stay on the same rows, but for a view that stands at
    // the very top: it goes on showing the top row. Insertion and removal cost O(selection ranges).
    void RowsInserted(std::uint32_t at, std::uint32_t count);
    void RowsRemoved(std::uint32_t at, std::uint32_t count);
    void RowsSwapped(std::uint32_t a, std::uint32_t b);
    // Another order or another set of rows: `newRow` gives the new place of an old row or kNoRow. A current
    // row that went leaves the one nearest to it.
    void RowsReordered(std::uint32_t count, const std::function<std::uint32_t(std::uint32_t)>& newRow);
    // Other rows altogether: nothing is current or selected, the view is at the top.
    void RowsReset(std::uint32_t count);

 private:
    static constexpr GridRange kNothing{1, 0};  // first > last

    void Extend(std::uint32_t row, bool keepOthers);
    void MoveSpan();
    std::uint32_t Nearest(std::uint32_t row, std::uint32_t count,
                          const std::function<std::uint32_t(std::uint32_t)>& moved) const;
    void GoTo(std::uint32_t row, bool extend);
    bool MoveRow(GridKey key, GridModifiers modifiers);
    bool MoveColumn(GridKey key, GridModifiers modifiers);

    GridColumns columns_;
    GridSort sort_;
    GridFilter filter_;
    GridGroups groups_;
    GridView view_{columns_};
    GridSelection selection_;
    std::uint32_t row_ = kNoRow;
    int column_ = -1;
    std::uint32_t anchor_ = kNoRow;  // where Shift and drag extend from
    GridRange span_ = kNothing;      // what the last extension selected
};

}  // namespace Dravel
