// The grid's commands about its look: column layout, properties, field chooser.
#include "tradebook/DlgGridProperties.h"
#include "tradebook/DravelGrid.h"
#include "tradebook/base/FieldChoose.h"
#include "tradebook/base/GridNames.h"

using namespace Dravel;

bool CDravelGrid::LayoutCommand(std::uint32_t id) {
    static constexpr struct {
        std::uint16_t id;
        void (CDravelGrid::*run)();
    } kCommands[] = {
        {command::ExportCsv, &CDravelGrid::ExportCsv},
        {command::FieldChooser, &CDravelGrid::ChooseFields},
        {command::Properties, &CDravelGrid::EditProperties},
        {command::SaveLayout, &CDravelGrid::SaveLayout},
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

void CDravelGrid::SaveProperties(std::string_view key) {
    const auto* font = reinterpret_cast<const std::uint8_t*>(GridFont().data());
    properties_.font.assign(font, font + GridFont().size());
    properties_.Save(settings_, key);
}

void CDravelGrid::ChooseFields() {
    CFieldChoose(*this, kTradeBookGrid).Open(Window());
}

void CDravelGrid::EditProperties() {
    DlgGridProperties dialog(properties_, GridFont(),
                             [this](const PropertyChange& change) { PropertyChanged(change); });
    dialog.Open(Window());
    if (!Window()) return;  // the bar went while the dialog was open, and has saved them
    SaveProperties(kGridKey);
    context_.SaveSettings();
}

// One edited item counts at once.
void CDravelGrid::PropertyChanged(const PropertyChange& change) {
    const auto property = static_cast<GridProperty>(change.id);
    if (property == GridProperty::Font) {
        SetGridFont(change.font);
        return;
    }
    if (!ChangeProperty(properties_, property, change.value)) {
        if (property == GridProperty::ColumnFreeze)
            user_.Box("You have permission to choose maximum 10 Columns to Freeze", "Dravel", Buttons::Ok,
                      Icon::Warning);
        return;
    }
    if (property == GridProperty::TradeForGreekAnalysisOnly) {
        SetAnalysisOnly(properties_.tradeForGreekAnalysisOnly);
    } else {
        FreezeColumns(properties_.columnFreeze);
        ShowRowLines(properties_.showGridRow);
    }
    Redraw();
}

// On: the book is withdrawn from normal handling, each trade reported once for analysis. Off: each is a trade
// again.
void CDravelGrid::SetAnalysisOnly(bool on) {
    book_.SetAnalysisOnly(on);
    book_.ReportAll({.trade = !on, .second = on});
}
