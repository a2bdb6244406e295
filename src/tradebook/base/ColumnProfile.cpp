#include "tradebook/base/ColumnProfile.h"

#include <algorithm>
#include <utility>

namespace Dravel {

namespace {

constexpr std::size_t kLongestHeader = 255;  // a longer one is damage

struct Number {
    const char* name;
    std::int32_t ColumnLayout::*value;
};
constexpr Number kNumbers[] = {
    {"Width", &ColumnLayout::width}, {"Visible", &ColumnLayout::visible},   {"Align", &ColumnLayout::align},
    {"Sort", &ColumnLayout::sort},   {"Locked", &ColumnLayout::locked},     {"Order", &ColumnLayout::order},
    {"Group", &ColumnLayout::group}, {"SortOrder", &ColumnLayout::ordinal},
};
constexpr char kHeader[] = "Header", kMultipleSort[] = "IsMultipleSort", kSortOrder[] = "SortOrder";

bool Usable(const std::string& header) {
    return !header.empty() && header.size() <= kLongestHeader &&
           std::none_of(header.begin(), header.end(), [](unsigned char c) { return c < ' '; });
}

// The defaults where the file says nothing usable.
void LayOver(const ColumnLayout& saved, GridColumn& column) {
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

// A hidden column's width is its own, too: the model keeps it.
ColumnLayout LayoutOf(const GridModel& grid, int number) {
    const GridColumn& column = grid.Columns()[number];
    return {.header = column.header,
            .width = column.width,
            .visible = column.visible,
            .align = static_cast<std::int32_t>(column.align),
            .sort = grid.Sort().Direction(number),
            .locked = column.locked,
            .order = grid.Columns().Position(number),
            .group = grid.Groups().Position(number),
            .ordinal = grid.Sort().Ordinal(number)};
}

ColumnLayout LayoutOf(const GridColumn& column) {
    return {.header = column.header,
            .width = column.width,
            .visible = column.visible,
            .align = static_cast<std::int32_t>(column.align)};
}

void ReadColumn(CVELTPXMLSettings& settings, const std::string& key, ColumnLayout& saved) {
    if (!settings.Open(key)) return;
    settings.ReadText(kHeader, saved.header);
    for (const Number& number : kNumbers)
        settings.ReadInteger(number.name, saved.*number.value);
}

bool WriteColumn(CVELTPXMLSettings& settings, const std::string& key, const ColumnLayout& saved,
                 bool ordinals) {
    bool written = settings.CreateKey(key) && settings.WriteText(kHeader, saved.header);
    std::int32_t old = 0;
    const bool ordinal = ordinals || settings.ReadInteger(kSortOrder, old);
    for (const Number& value : kNumbers) {
        if (value.value == &ColumnLayout::ordinal && !ordinal) continue;
        written = written && settings.WriteInteger(value.name, saved.*value.value);
    }
    return written;
}

// Values that only make sense for all columns together: one place on the screen moves the others.
constexpr std::int32_t ColumnLayout::*kTogether[] = {&ColumnLayout::sort, &ColumnLayout::ordinal,
                                                     &ColumnLayout::order, &ColumnLayout::group};

}  // namespace

ColumnProfile::ColumnProfile(IFiles& files, const std::filesystem::path& dataFolder, std::string name)
    : name_(std::move(name)),
      path_(dataFolder.empty() ? dataFolder : dataFolder / "ColumnProfile" / name_ / "ColumnProfile.xml"),
      file_(files, path_) {
    if (!path_.empty()) Read();
}

void ColumnProfile::Read() {
    if (file_.Try([this](const std::string& text) { return Take(text); }) != KeptFile::State::Damaged) return;
    file_.KeepDamaged();  // a failure is met again before the file is written
    notice_ = file_.DamageText("The columns of the grid");
}

bool ColumnProfile::Take(const std::string& text) {
    return settings_.LoadTextForm(text) && CVELTPXMLSettings::IsWhole(text);
}

bool ColumnProfile::MultipleSort() {
    std::int32_t on = 1;
    if (settings_.Open(name_)) settings_.ReadInteger(kMultipleSort, on);
    return on != 0;
}

int ColumnProfile::AddColumn(GridModel& grid, GridColumn column, bool multipleSort) {
    ColumnLayout saved = LayoutOf(column);
    if (settings_.Open(KeyOf(column.key))) {
        ReadColumn(settings_, KeyOf(column.key), saved);
        LayOver(saved, column);
    }
    records_.push_back({name_, column.key, column.header, column.width, static_cast<int>(column.align),
                        column.visible, saved.sort, saved.locked});
    const int number = grid.Columns().Add(std::move(column));
    TakePlaces(grid, number, saved, multipleSort);
    return number;
}

void ColumnProfile::TakePlaces(GridModel& grid, int number, const ColumnLayout& saved, bool multipleSort) {
    if (saved.sort == 1 || saved.sort == -1) {
        grid.Sort().Set(number, saved.sort == 1, multipleSort);
        if (saved.ordinal > 0) ordinals_[saved.ordinal] = number;
    }
    // Of two columns with one saved place the later takes it: deliberate.
    if (grid.Columns()[number].visible && saved.order >= 0) order_[saved.order] = number;
    if (saved.group >= 0) groups_[saved.group] = number;
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
    made_.clear();
    for (int column = 0; column < grid.Columns().Count(); ++column)
        made_.push_back(LayoutOf(grid, column));
}

bool ColumnProfile::Retry(GridModel& grid, bool& multipleSort) {
    const bool read = !Known();
    if (read) {
        Read();
        if (!Known()) return false;
        LayChangesOver(grid, multipleSort);
        multipleSort = MultipleSort();
        Apply(grid, multipleSort);
    }
    if (unsaved_) SaveNow(grid, multipleSort, false);
    return read;
}

// What the user left as it was made says nothing: there the file counts.
void ColumnProfile::LayChangesOver(const GridModel& grid, bool multipleSort) {
    const auto columns = static_cast<std::size_t>(grid.Columns().Count());
    const auto changed = [&](auto value) {
        for (std::size_t i = 0; i < std::min(columns, made_.size()); ++i) {
            if (LayoutOf(grid, static_cast<int>(i)).*value != made_[i].*value) return true;
        }
        return false;
    };
    bool together[std::size(kTogether)];
    std::transform(std::begin(kTogether), std::end(kTogether), together, changed);
    for (std::size_t i = 0; i < std::min(columns, made_.size()); ++i) {
        const ColumnLayout now = LayoutOf(grid, static_cast<int>(i));
        settings_.CreateKey(KeyOf(grid.Columns()[static_cast<int>(i)].key));
        if (now.header != made_[i].header) settings_.WriteText(kHeader, now.header);
        for (const Number& number : kNumbers) {
            const auto* all = std::find(std::begin(kTogether), std::end(kTogether), number.value);
            const bool write = all != std::end(kTogether) ? together[all - std::begin(kTogether)]
                                                          : now.*number.value != made_[i].*number.value;
            if (write) settings_.WriteInteger(number.name, now.*number.value);
        }
    }
    if (!multipleSort && settings_.CreateKey(name_)) settings_.WriteInteger(kMultipleSort, multipleSort);
}

void ColumnProfile::Apply(GridModel& grid, bool multipleSort) {
    order_.clear();
    groups_.clear();
    ordinals_.clear();
    grid.Sort().Clear();
    grid.Groups().Clear();
    for (int number = 0; number < grid.Columns().Count(); ++number) {
        GridColumn column = grid.Columns()[number];
        ColumnLayout saved = LayoutOf(column);
        ReadColumn(settings_, KeyOf(column.key), saved);
        LayOver(saved, column);
        grid.Columns().SetHeader(number, column.header);
        grid.Columns().SetWidth(number, column.width);
        grid.Columns().SetAlign(number, column.align);
        grid.Columns().SetVisible(number, column.visible);
        grid.Columns().SetLocked(number, column.locked);
        TakePlaces(grid, number, saved, multipleSort);
    }
    Restore(grid);
}

bool ColumnProfile::Save(const GridModel& grid, bool multipleSort) {
    return SaveNow(grid, multipleSort, true);
}

bool ColumnProfile::SaveNow(const GridModel& grid, bool multipleSort, bool patient) {
    unsaved_ = !Known();
    if (unsaved_) return false;
    if (!Write(grid, multipleSort)) {
        settings_ = CVELTPXMLSettings();  // keys stood where values belong, in a damaged file
        if (!Write(grid, multipleSort)) return false;
    }
    unsaved_ = !path_.empty() && !file_.Write(settings_.TextForm(), patient);
    return !unsaved_;
}

bool ColumnProfile::Write(const GridModel& grid, bool multipleSort) {
    if (!settings_.CreateKey(name_) || !settings_.WriteInteger(kMultipleSort, multipleSort)) return false;
    for (int column = 0; column < grid.Columns().Count(); ++column) {
        if (!WriteColumn(settings_, KeyOf(grid.Columns()[column].key), LayoutOf(grid, column),
                         NeedsOrdinals(grid.Sort())))
            return false;
    }
    return true;
}

}  // namespace Dravel
