// The header of a grid under the mouse: sorting, moving and sizing columns, and its menu.
#include <cstdlib>

#include "toolkit/ModalLoop.h"
#include "toolkit/win32/GridState.h"

using namespace Dravel;

namespace {

constexpr std::uint16_t Id(GridHeaderCommand command) {
    return static_cast<std::uint16_t>(command);
}

}  // namespace

void GridInput::HeaderClick(int column) {
    const GridModifierKeys held = HeldModifiers();
    model.Sort().Click(column, grid.multipleSort_ && (held.ctrl || held.shift));
    grid.Redraw();
    grid.OnSortChanged();
}

void GridInput::DragDivider(int x) {
    state.filter.BeginMoving();
    model.Columns().SetPixelWidth(model.Columns().Position(state.dragColumn),
                                  state.dragWidth + x - state.dragX);
    grid.ModelChanged();
}

void GridInput::DragHeader(int x) {
    if (std::abs(x - state.dragX) > GetSystemMetrics(SM_CXDRAG) && !model.Columns()[state.dragColumn].locked)
        state.dragMoved = true;
    const int mark = model.View().DropMark(state.dragColumn, x);
    if (!state.dragMoved || mark == state.dropMark) return;
    state.dropMark = mark;
    grid.Redraw();
}

void GridInput::DropHeader(int column, int mark) {
    const int from = model.Columns().Position(column);
    if (mark < 0 || from < 0) return grid.Redraw();
    model.Columns().Move(column, mark > from ? mark - 1 : mark);
    grid.ModelChanged();
    grid.OnColumnsChanged();
}

// The columns go by under a header held at the edge of those that scroll.
void GridInput::ScrollHeader(int x, int width) {
    if (!state.dragMoved) return;
    GridView& view = model.View();
    const int left = view.ClipLeft(model.Columns().ShownCount()), step = Scale(24, state.dpi);
    const int to = view.ScrollX() + (x < left ? -step : x >= width ? step : 0);
    if (to == view.ScrollX()) return;
    state.filter.BeginMoving();
    view.SetScrollX(to);
    DragHeader(x);
    grid.ModelChanged();
}

GridMenu GridInput::HeaderMenuEntries(int column) const {
    const GridColumns& columns = model.Columns();
    const bool on = column >= 0, locked = on && columns[column].locked;
    const bool grouped = model.Groups().Position(column) >= 0;
    const int frozen = columns.Position(column) + 1, sorted = on ? model.Sort().Direction(column) : 0;
    return {
        {Id(GridHeaderCommand::BestFit), L"&Best Fit", on && !locked},
        {Id(GridHeaderCommand::FitAll), L"Fit &All"},
        {Id(GridHeaderCommand::Hide), L"&Hide", on && columns.ShownCount() > 1},
        {Id(GridHeaderCommand::Lock), L"Loc&k", on, locked},
        {},
        {Id(grouped ? GridHeaderCommand::Ungroup : GridHeaderCommand::Group),
         grouped ? L"Un&group" : L"&Group By This Column", on},
        {},
        {Id(GridHeaderCommand::SortAscending), L"&Sort Ascending", on, sorted > 0},
        {Id(GridHeaderCommand::SortDescending), L"Sort &Descending", on, sorted < 0},
        {Id(GridHeaderCommand::ClearSort), L"C&lear Sort", model.Sort().Sorted()},
        {},
        {Id(GridHeaderCommand::Freeze), L"&Freeze Up To Here", on && frozen <= kMaxGridFrozen,
         on && frozen == columns.Frozen()},
        {Id(GridHeaderCommand::Unfreeze), L"&Unfreeze", columns.Frozen() > 0},
    };
}

void GridInput::HeaderMenu(int x, int y, int column) {
    GridMenu entries = HeaderMenuEntries(column);
    grid.OnHeaderMenu(column, entries);
    const HMENU menu = CreatePopupMenu();
    if (menu == nullptr) return;
    for (const GridMenuEntry& entry : entries) {
        const UINT look = (entry.enabled ? 0u : MF_GRAYED) | (entry.checked ? MF_CHECKED : 0u);
        AppendMenuW(menu, entry.command == 0 ? MF_SEPARATOR : MF_STRING | look, entry.command, entry.text);
    }
    const HWND window = Window();
    const auto chosen = static_cast<std::uint16_t>(
        TrackPopupMenu(menu, TPM_RETURNCMD | TPM_RIGHTBUTTON, x, y, 0, window, nullptr));
    ModalLoop::Ended();
    DestroyMenu(menu);
    // The grid may have gone while the menu was up.
    if (chosen == 0 || !IsWindow(window) || grid.window_ != window) return;
    if (chosen >= Id(GridHeaderCommand::BestFit) && chosen < Id(GridHeaderCommand::End)) {
        HeaderCommand(static_cast<GridHeaderCommand>(chosen), column);
    } else {
        PostMessageW(window, WM_COMMAND, chosen, 0);
    }
}

void GridInput::HeaderCommand(GridHeaderCommand command, int column) {
    switch (command) {
        case GridHeaderCommand::BestFit:
        case GridHeaderCommand::FitAll:
            command == GridHeaderCommand::FitAll ? grid.FitColumns() : grid.FitColumn(column);
            return grid.OnColumnsChanged();
        case GridHeaderCommand::Hide:
            grid.SetColumnVisible(column, false);
            return grid.OnColumnsChanged();
        case GridHeaderCommand::Lock:
            grid.SetColumnLocked(column, !model.Columns()[column].locked);
            return grid.OnColumnsChanged();
        case GridHeaderCommand::Group:
        case GridHeaderCommand::Ungroup:
            return grid.GroupBy(column, command == GridHeaderCommand::Group);
        case GridHeaderCommand::SortAscending:
        case GridHeaderCommand::SortDescending:
            // A column that is a key among others stays one, the others too.
            model.Sort().Set(column, command == GridHeaderCommand::SortAscending,
                             grid.multipleSort_ && model.Sort().Ordinal(column) > 0);
            break;
        case GridHeaderCommand::ClearSort:
            model.Sort().Clear();
            break;
        default:
            return Freeze(command == GridHeaderCommand::Freeze ? model.Columns().Position(column) + 1 : 0);
    }
    grid.Redraw();
    grid.OnSortChanged();
}

void GridInput::Freeze(int count) {
    grid.FreezeColumns(count);
    grid.OnFrozenChanged(count);
}
