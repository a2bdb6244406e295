// The grid's commands about its look: column layout, properties, field chooser.
#include "tradebook/DravelGrid.h"

using namespace Dravel;

bool CDravelGrid::LayoutCommand(std::uint32_t id) {
    static constexpr struct {
        std::uint16_t id;
        void (CDravelGrid::*run)();
    } kCommands[] = {
        {command::ExportCsv, &CDravelGrid::ExportCsv},
        {command::SaveLayout, &CDravelGrid::SaveLayout},
        {command::MultipleSort, &CDravelGrid::SwitchMultipleSort},
    };
    for (const auto& entry : kCommands) {
        if (entry.id != id) continue;
        (this->*entry.run)();
        return true;
    }
    return false;
}

void CDravelGrid::SaveLayout() {
    if (!SaveProfile()) context_.log.Line(LogLevel::Warning, "Layout", "The columns could not be saved.");
}

// Without it there is one sort key at most: the most important stays.
void CDravelGrid::SwitchMultipleSort() {
    EnableMultipleSort(!MultipleSort());
    if (MultipleSort() || Model().Sort().Keys().size() < 2) return;
    const GridSortKey first = Model().Sort().Keys().front();
    SetSortColumn(first.column, first.ascending, false);
    OnSortChanged();
}

void CDravelGrid::SaveProperties(std::string_view key) {
    const auto* font = reinterpret_cast<const std::uint8_t*>(GridFont().data());
    properties_.font.assign(font, font + GridFont().size());
    properties_.Save(settings_, key);
}
