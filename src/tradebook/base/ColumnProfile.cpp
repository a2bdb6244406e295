#include "tradebook/base/ColumnProfile.h"

#include <algorithm>
#include <utility>

namespace Dravel {

namespace {

constexpr std::size_t kLongestHeader = 255;  // a longer one is damage

// The values of a column's key.
struct Saved {
    std::string header;
    std::int32_t width = 0, visible = 0, align = 0, sort = 0, locked = 0, order = -1, group = -1, ordinal = 0;
};
struct Number {
    const char* name;
    std::int32_t Saved::*value;
};
constexpr Number kNumbers[] = {
    {"Width", &Saved::width}, {"Visible", &Saved::visible},   {"Align", &Saved::align},
    {"Sort", &Saved::sort},   {"Locked", &Saved::locked},     {"Order", &Saved::order},
    {"Group", &Saved::group}, {"SortOrder", &Saved::ordinal},
};
constexpr char kHeader[] = "Header", kMultipleSort[] = "IsMultipleSort", kSortOrder[] = "SortOrder";

bool Usable(const std::string& header) {
    return !header.empty() && header.size() <= kLongestHeader &&
           std::none_of(header.begin(), header.end(), [](unsigned char c) { return c < ' '; });
}

// The defaults where the file says nothing usable.
void LayOver(const Saved& saved, GridColumn& column) {
    if (Usable(saved.header)) column.header = saved.header;
    if (saved.width >= 1 && saved.width <= kMaxColumnWidth) column.width = saved.width;
    if (saved.align >= 0 && saved.align <= 2) column.align = static_cast<GridAlign>(saved.align);
    column.visible = saved.visible != 0;
    column.locked = saved.locked != 0;
}

// The file keeps a direction a column. Keys that do not stand in the order of their columns need more.
bool NeedsOrdinals(const GridSort& sort) {
    const auto byColumn = [](const GridSortKey& a, const GridSortKey& b) { return a.column < b.column; };
    return !std::is_sorted(sort.Keys().begin(), sort.Keys().end(), byColumn);
}

}  // namespace

ColumnProfile::ColumnProfile(IFiles& files, const std::filesystem::path& dataFolder, std::string name)
    : files_(files), name_(std::move(name)) {
    if (dataFolder.empty()) return;
    path_ = dataFolder / "ColumnProfile" / name_ / "ColumnProfile.xml";
    settings_.LoadFile(files_, path_);
}

bool ColumnProfile::MultipleSort() {
    std::int32_t on = 1;
    if (settings_.Open(name_)) settings_.ReadInteger(kMultipleSort, on);
    return on != 0;
}

int ColumnProfile::AddColumn(GridModel& grid, GridColumn column, bool multipleSort) {
    Saved saved{.header = column.header,
                .width = column.width,
                .visible = column.visible,
                .align = static_cast<std::int32_t>(column.align)};
    if (settings_.Open(KeyOf(column.key))) {
        settings_.ReadText(kHeader, saved.header);
        for (const Number& number : kNumbers)
            settings_.ReadInteger(number.name, saved.*number.value);
        LayOver(saved, column);
    }
    records_.push_back({name_, column.key, column.header, column.width, static_cast<int>(column.align),
                        column.visible, saved.sort, saved.locked});
    const bool visible = column.visible;
    const int number = grid.Columns().Add(std::move(column));
    if (saved.sort == 1 || saved.sort == -1) {
        grid.Sort().Set(number, saved.sort == 1, multipleSort);
        if (saved.ordinal > 0) ordinals_[saved.ordinal] = number;
    }
    // Of two columns with one saved place the later takes it: deliberate.
    if (visible && saved.order >= 0) order_[saved.order] = number;
    if (saved.group >= 0) groups_[saved.group] = number;
    return number;
}

void ColumnProfile::Restore(GridModel& grid) {
    int position = 0;
    for (const auto& [saved, column] : order_) {
        if (saved < grid.Columns().Count() && column < grid.Columns().Count())
            grid.Columns().Move(column, position++);
    }
    // Each in turn becomes the last key, those without an ordinal stay in front: there are none but in a file
    // that somebody edited.
    for (const auto& [ordinal, column] : ordinals_) {
        const int direction = grid.Sort().Direction(column);
        if (direction == 0) continue;
        grid.Sort().Remove(column);
        grid.Sort().Set(column, direction == 1, true);
    }
    for (const auto& [saved, column] : groups_)
        grid.Groups().Add(column);
}

bool ColumnProfile::Save(const GridModel& grid, bool multipleSort) {
    if (!Write(grid, multipleSort)) {
        settings_ = CVELTPXMLSettings();  // keys stood where values belong, in a damaged file
        if (!Write(grid, multipleSort)) return false;
    }
    return path_.empty() || settings_.SaveFile(files_, path_);
}

bool ColumnProfile::Write(const GridModel& grid, bool multipleSort) {
    if (!settings_.CreateKey(name_) || !settings_.WriteInteger(kMultipleSort, multipleSort)) return false;
    for (int column = 0; column < grid.Columns().Count(); ++column) {
        if (!WriteColumn(grid, column)) return false;
    }
    return true;
}

// A hidden column's width is its own, too: the model keeps it.
bool ColumnProfile::WriteColumn(const GridModel& grid, int number) {
    const GridColumn& column = grid.Columns()[number];
    const Saved saved{.header = column.header,
                      .width = column.width,
                      .visible = column.visible,
                      .align = static_cast<std::int32_t>(column.align),
                      .sort = grid.Sort().Direction(number),
                      .locked = column.locked,
                      .order = grid.Columns().Position(number),
                      .group = grid.Groups().Position(number),
                      .ordinal = grid.Sort().Ordinal(number)};
    bool written = settings_.CreateKey(KeyOf(column.key)) && settings_.WriteText(kHeader, saved.header);
    std::int32_t old = 0;
    const bool ordinal = NeedsOrdinals(grid.Sort()) || settings_.ReadInteger(kSortOrder, old);
    for (const Number& value : kNumbers) {
        if (value.value == &Saved::ordinal && !ordinal) continue;
        written = written && settings_.WriteInteger(value.name, saved.*value.value);
    }
    return written;
}

}  // namespace Dravel
