// The grid control: a window over a GridModel that draws the visible cells of an IGridSource and turns keys,
// mouse and scroll bars into calls on the model.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "toolkit/Font.h"
#include "toolkit/Geometry.h"
#include "toolkit/GridMenu.h"
#include "toolkit/GridModel.h"
#include "toolkit/GridSource.h"

namespace Dravel {

// Control identifier of the filter field of column 0.
inline constexpr int kGridFilterID = 2000;
// Control identifier of the in-place editor's field.
inline constexpr int kGridEditorID = 2100;

// What the editor of a cell is: a field alone, or one with a list of choices.
enum class GridEditKind : std::uint8_t { Text, Choice };
// Where the user goes on from an edited cell: Tab right, Enter down, with Shift the other way.
enum class GridEditMove : std::uint8_t { Right, Left, Down, Up };
// Where that is: the cell beside the edited one; another cell, which is edited; the cell that is current.
enum class GridNext : std::uint8_t { Neighbour, Cell, Stay };

// The class name of a grid window unless its owner gives another.
inline constexpr wchar_t kGridClass[] = L"KRVPGridCtrl";

// More than these at the left edge would leave no room to scroll the others in.
inline constexpr int kMaxGridFrozen = 10;

struct GridModifierKeys {
    bool shift = false, ctrl = false, alt = false;
    bool operator==(const GridModifierKeys&) const = default;
};
// A key (virtual key code) that sends a command to the grid's window.
struct GridAccelerator {
    std::uint32_t key = 0;
    GridModifierKeys modifiers;
    std::uint16_t command = 0;
};

}  // namespace Dravel

// User-interface thread throughout. Windows are void* (HWND). The class keeps its window: destroying the
// object destroys the window, but hooks of a derived class run only when the window goes first, so a derived
// destructor calls Destroy(). A grid whose window its parent destroyed stays usable as an object; Window() is
// then null.
class CKRVPGridCtrl {
 public:
    CKRVPGridCtrl();
    virtual ~CKRVPGridCtrl();
    CKRVPGridCtrl(const CKRVPGridCtrl&) = delete;
    CKRVPGridCtrl& operator=(const CKRVPGridCtrl&) = delete;

    // A visible child of `parent`. `place` in its client pixels. `className` must live as long as the
    // library.
    bool Create(void* parent, const Dravel::Rect& place, std::uint32_t id,
                const wchar_t* className = Dravel::kGridClass);
    void Destroy();
    void* Window() const { return window_; }

    // The rows; not owned, must outlive its use here. Resets the rows.
    void SetSource(const Dravel::IGridSource* source);
    const Dravel::IGridSource* Source() const { return source_; }

    // Read access; what changes the model goes through the operations below, which also redraw.
    const Dravel::GridModel& Model() const { return model_; }
    const Dravel::GridColumns& Columns() const { return model_.Columns(); }
    const Dravel::GridSelection& Selection() const { return model_.Selection(); }
    std::uint32_t RowCount() const { return model_.RowCount(); }
    std::uint32_t CurrentRow() const { return model_.CurrentRow(); }
    int CurrentColumn() const { return model_.CurrentColumn(); }

    // Columns and header.
    int InsertColumn(Dravel::GridColumn column);
    void SetColumnAlign(int column, Dravel::GridAlign align);
    void SetColumnVisible(int column, bool visible);
    void SetColumnLocked(int column, bool locked);
    void MoveColumn(int column, int position);
    void SetColumnOrder(std::span<const std::int32_t> order);
    void FreezeColumns(int count);  // brought into 0..kMaxGridFrozen; those that fit into the window
    void FitColumn(int column);     // to its header and the cells in view
    void FitColumns();              // all that are shown and not locked
    void EnableHeader(bool enable);
    void EnableRowHeader(bool enable, int width = 9);  // pixels at 96 dpi
    void EnableMarkSortColumn(bool enable) { markSort_ = enable; }
    void EnableMultipleSort(bool enable) { multipleSort_ = enable; }
    bool MultipleSort() const { return multipleSort_; }
    // As the user does it: switched off, the most important key alone remains.
    void SwitchMultipleSort();
    void SetSortColumn(int column, bool ascending, bool multiple);
    void ClearSort();
    bool IsSorted() const { return model_.Sort().Sorted(); }

    // Filter bar: a band of edit fields below the header, one a shown column, with the control identifier
    // kGridFilterID + column number. `hint` stands for "no filter" and shows in an empty field; `gridName` is
    // the name under which an owner keeps what belongs to the bar. Texts outlast hiding; what filters while
    // the bar is hidden is the model's to say.
    void EnableFilterBar(std::string_view hint, std::string_view gridName);
    void DisableFilterBar();
    bool FilterBarShown() const { return model_.Filter().Shown(); }
    const std::string& FilterBarName() const { return filterName_; }
    void SetFilterText(int column, std::string_view text);  // as if typed
    void FocusFilter(
        int column);  // gives the keyboard to the column's field, brought into view (Ctrl+Shift+F)

    // Groups by the column, as the innermost, or no longer; OnGroupsChanged when that is a change.
    void GroupBy(int column, bool group);

    // In-place editing. Opened by F2, a double click or a character, which it does not lose; ended by Enter,
    // Tab and the loss of the focus, cancelled by Escape.
    // Makes the cell current. False: it is not to be edited. An open edit ends first, which may move the
    // rows: who has one open ends it before it looks for the row.
    bool EditCell(std::uint32_t row, int column);
    // False: the owner refused the text, the editor stays open. True without an editor.
    bool EndEdit(bool commit);
    // Within OnEndEdit: the user ends the edit by a key of the editor. False: it is left in another way (the
    // keyboard goes elsewhere, a command, EndEdit).
    bool EditEndsByKey() const;
    bool Editing() const;

    // Look.
    bool SetGridFont(const Dravel::FontBytes& font);  // false: not a font, the old one stays
    const Dravel::FontBytes& GridFont() const { return fontBytes_; }
    void ShowRowLines(bool show);

    // A text in the place of the rows, which there should be none of; empty: the rows. It is the window's
    // text, too, so that whoever reads out windows hears it.
    void ShowInsteadOfRows(std::string_view text);

    // Current cell, selection, scrolling. Another cell ends an open edit, as EditCell does.
    void SetCurrent(std::uint32_t row, int column);
    void AddSelection(Dravel::GridRange range);
    void SelectAll();
    void ClearSelection();
    void ScrollRows(std::int64_t rows);   // down when positive
    void ScrollToRow(std::uint32_t row);  // makes it the top row, as far as there are rows below
    void EnsureVisible(std::uint32_t row, int column);  // column -1: row alone
    // Where a cell is drawn, in client pixels; empty when out of view.
    Dravel::Rect CellRect(std::uint32_t row, int column) const { return model_.View().CellRect(row, column); }

    // The source changed; called after it did. See GridModel for what stays where.
    void RowsInserted(std::uint32_t at, std::uint32_t count);
    void RowsRemoved(std::uint32_t at, std::uint32_t count);
    void RowsSwapped(std::uint32_t a, std::uint32_t b);
    void RowsReordered(std::uint32_t count, const std::function<std::uint32_t(std::uint32_t)>& newRow);
    void RowsReset();
    void RedrawRow(std::uint32_t row);
    void Redraw();
    // Paints now when the window has waited for it too long: for rows that come without a pause, which would
    // keep the system from ever asking for a paint.
    void PaintWhenLate();
    // Between the two, changes of the rows cost no window work each: one update at the end. They nest.
    void BeginUpdate() { ++updates_; }
    void EndUpdate();

    // Replaces the table of keys that send commands.
    void SetAccelerators(std::span<const Dravel::GridAccelerator> table);

    // The window procedure's entry; not for callers.
    std::intptr_t HandleMessage(void* window, std::uint32_t message, std::uintptr_t wparam,
                                std::intptr_t lparam);

 protected:
    virtual bool OnCreate() { return true; }                 // false: creation fails
    virtual void OnDestroy() {}                              // the window still exists
    virtual bool OnCommand(std::uint32_t) { return false; }  // a WM_COMMAND; true: done
    // A control inside the grid tells something: EN_CHANGE and the like. True: done.
    virtual bool OnControl(std::uint32_t /*id*/, std::uint32_t /*code*/, void* /*control*/) { return false; }
    // Before the grid's own handling; true: consumed. `key` is a virtual key code.
    virtual bool OnKeyDown(std::uint32_t /*key*/, Dravel::GridModifierKeys, bool /*repeated*/) {
        return false;
    }
    // `pressed`: this grid saw the press too.
    virtual bool OnKeyUp(std::uint32_t /*key*/, bool /*pressed*/) { return false; }
    virtual bool OnChar(std::uint32_t /*unit, UTF-16*/) { return false; }
    // A cell is about to be edited: false when it may not be. `text` is the cell's and may be changed.
    virtual bool OnBeginEdit(std::uint32_t /*row*/, int /*column*/, std::string& /*text*/,
                             Dravel::GridEditKind&) {
        return false;
    }
    // The choices of an editor with a list, each at most kMaxChoiceBytes, once the list or type-ahead needs
    // them and again whenever the text was typed on. `typed`: what the user typed, empty before that.
    virtual void OnEditChoices(std::uint32_t /*row*/, int /*column*/, std::string_view /*typed*/,
                               std::vector<std::string>& /*choices*/) {}
    // The edit is to end with this text. False: the editor stays open.
    virtual bool OnEndEdit(std::uint32_t /*row*/, int /*column*/, const std::string& /*text*/) {
        return true;
    }
    virtual void OnCancelEdit(std::uint32_t /*row*/, int /*column*/) {}
    // Where the user goes on from this cell, which may be changed.
    virtual Dravel::GridNext OnNextCell(Dravel::GridEditMove, std::uint32_t& /*row*/, int& /*column*/) {
        return Dravel::GridNext::Neighbour;
    }
    // The user wants the header's menu; column -1: beside the columns. Adds to what the grid offers itself.
    virtual void OnHeaderMenu(int /*column*/, Dravel::GridMenu&) {}
    // Where a menu is wanted, in screen pixels (from the keyboard: at the current cell).
    virtual void OnContextMenu(int /*x*/, int /*y*/, const Dravel::GridHit&) {}
    // Where the cell may not be edited.
    virtual void OnCellDoubleClick(std::uint32_t /*row*/, int /*column*/) {}
    virtual void OnSelectionChanged() {}  // selection or current cell
    virtual void OnSortChanged() {}  // the user clicked a header: put the rows in the order of Model().Sort()
    // The user typed into the filter bar, or showed or hid it (then -1): show the rows that
    // Model().Filter() leaves.
    virtual void OnFilterChanged(int /*column*/) {}
    virtual void OnGroupsChanged() {}  // the user grouped or ungrouped: order by Model().Groups()
    virtual void OnGroupToggled(std::uint32_t /*row*/) {}  // the user opened or closed the group of this head
    virtual void OnColumnsChanged() {}    // the user changed width, order, visibility or lock
    virtual void OnFrozenChanged(int) {}  // the user froze so many columns, or none
    virtual void OnFocus(bool /*gained*/) {}
    virtual void OnViewChanged() {}  // scrolled, resized or columns moved: child windows over cells follow
    // A message that the grid does not handle itself; true: `result` is the answer.
    virtual bool OnMessage(std::uint32_t /*message*/, std::uintptr_t, std::intptr_t,
                           std::intptr_t& /*result*/) {
        return false;
    }

    // For derived windows' own needs.
    Dravel::GridModel& MutableModel() { return model_; }
    void ModelChanged();  // after changes through MutableModel: scroll bars, redraw, notifications

 private:
    friend struct GridPaint;
    friend struct GridInput;
    friend class GridFilterBar;
    friend class GridEditor;
    friend class GridTip;
    struct State;  // window-side state: fonts, drag, wheel remainders

    bool Dispatch(std::uint32_t message, std::uintptr_t wparam, std::intptr_t lparam, std::intptr_t& result);
    bool Look(std::uint32_t message, std::uintptr_t wparam, std::intptr_t lparam, std::intptr_t& result);
    bool Notified(int id, int code, void* control);
    void Paint();
    void FocusChanged(bool gained);
    bool Created();
    void Destroyed();
    void UpdateMetrics();
    void UpdateScrollBars();
    // Of a row that is no group's head, or none at all, the level is -1.
    Dravel::GridGroupHead HeadOf(std::uint32_t row) const;
    void ViewMoved();  // places the windows within, and tells the owner
    bool MakeFont(const Dravel::FontBytes& font);
    bool UpdateDpi();  // true: another one than before
    void ShowFilterBar(bool show);
    void SetFrozenRoom();
    void ClearHiddenFilters();

    Dravel::GridModel model_;
    const Dravel::IGridSource* source_ = nullptr;
    void* window_ = nullptr;
    Dravel::FontBytes fontBytes_{};
    std::vector<Dravel::GridAccelerator> accelerators_;
    std::unique_ptr<State> state_;
    int updates_ = 0;
    int rowHeaderWidth_ = 9;
    std::string filterName_;
    bool header_ = true, rowHeader_ = true, markSort_ = true, multipleSort_ = false;
    bool rowLines_ = true;
};
