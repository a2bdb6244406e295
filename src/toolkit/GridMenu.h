// The menu of a grid's header, as data: the grid fills in what it does itself, its owner adds what it does.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Dravel {

// What the grid does itself; all other commands of the menu go to the grid's window as WM_COMMAND.
enum class GridHeaderCommand : std::uint16_t {
    BestFit = 0xE001,
    FitAll,
    Hide,
    Lock,
    Group,
    Ungroup,
    SortAscending,
    SortDescending,
    ClearSort,
    Freeze,
    Unfreeze,
    End
};

struct GridMenuEntry {
    std::uint16_t command = 0;  // 0: a line
    const wchar_t* text = nullptr;
    bool enabled = true;
    bool checked = false;
};
using GridMenu = std::vector<GridMenuEntry>;

// Puts entries behind the one of `after`; at the end when there is none.
inline void InsertBehind(GridMenu& menu, GridHeaderCommand after, std::initializer_list<GridMenuEntry> more) {
    auto at = menu.begin();
    while (at != menu.end() && at->command != static_cast<std::uint16_t>(after))
        ++at;
    menu.insert(at == menu.end() ? at : at + 1, more);
}

}  // namespace Dravel
