#include "tradebook/DravelGrid.h"

#include <cstring>

#include "message/TagMessageWriter.h"
#include "message/Tags.h"
#include "tradebook/TradeColumns.h"

using namespace Dravel;

namespace {

constexpr GridModifierKeys kCtrl{.ctrl = true};
constexpr GridAccelerator kKeys[] = {
    {0x2D /* Insert */, {}, command::AddTrade},
    {'S', kCtrl, command::Save},
    {'I', kCtrl, command::Import},
    {'I', {.shift = true, .ctrl = true}, command::ImportReport},
    {'E', kCtrl, command::ExportCsv},
    {'C', kCtrl, command::Copy},
    {'C', {.shift = true, .ctrl = true}, command::CopyHtml},
    {'F', kCtrl, command::FilterBar},
    {0x0D /* Enter */, {.alt = true}, command::Properties},
};

}  // namespace

CDravelGrid::CDravelGrid(const BarContext& context, TradeBook& book, const IBookGate& gate)
    : context_(context),
      host_(context.host),
      user_(context.user),
      book_(book),
      gate_(gate),
      entry_(context.entry),
      settings_(context.settings) {
    book_.SetObserver(this);
}

CDravelGrid::~CDravelGrid() {
    book_.SetObserver(nullptr);
    Destroy();
}

bool CDravelGrid::OnCreate() {
    EnableMarkSortColumn(true);
    EnableHeader(true);
    EnableRowHeader(true);
    ApplyFont();
    InsertColumns();
    EnableFilterBar(kNoFilter, GridName());
    SetAccelerators(kKeys);
    SetSource(this);
    RestoreColumnOrder();
    divisorFault_ = divisors_.Load(context_.files, context_.folder.Divisors());
    AcceptFiles();
    AnnounceGrid();
    return true;
}

// The columns as the user left them.
void CDravelGrid::InsertColumns() {
    LoadProfile(context_.files, context_.folder.Root(), kGridProfile);
    LoadMultipleSort();
    for (const TradeColumn& column : kTradeColumns) {
        AddColumn({.key = column.key,
                   .header = column.header,
                   .width = column.width,
                   .align = static_cast<GridAlign>(column.align),
                   .visible = column.visible});
    }
}

// The saved font; without one, the parent's in the face and weight that the book has always had.
void CDravelGrid::ApplyFont() {
    FontBytes font{};
    std::vector<std::uint8_t> saved;
    if (settings_.Open(kGridKey) && GridProperties::LoadFont(settings_, saved)) {
        std::memcpy(font.data(), saved.data(), font.size());
        if (SetGridFont(font)) return;
    }
    font = FontOfWindow(Window());
    SetFontFace(font, L"MS Sans Serif", 700);
    SetGridFont(font);
}

// Tells the terminal where the grid and the plug-in's message entry are.
void CDravelGrid::AnnounceGrid() {
    CTagMessageWriter frame(msg::EntryAnnouncement);
    frame.Append64(tag::Entry, reinterpret_cast<std::uintptr_t>(static_cast<void*>(this)));
    frame.Append30002(host_.MessageEntry());
    host_.Send(frame);
}

void CDravelGrid::LoadLook(std::string_view key) {
    properties_.Load(settings_, key);
    ApplyProperties();
}

void CDravelGrid::LoadProperties(std::string_view key) {
    LoadLook(key);
    book_.SetAnalysisOnly(properties_.tradeForGreekAnalysisOnly);
    if (!properties_.tradeForGreekAnalysisOnly) book_.ReportAll();
}

void CDravelGrid::ApplyProperties() {
    FontBytes font{};
    if (properties_.font.size() == font.size()) {
        std::memcpy(font.data(), properties_.font.data(), font.size());
        SetGridFont(font);
    }
    FreezeColumns(properties_.columnFreeze);
    ShowRowLines(properties_.showGridRow);
    Redraw();
}

void CDravelGrid::OnFocus(bool gained) {
    host_.Focus(Window(), gained ? 1 : 0);
}

void CDravelGrid::OnHeaderMenu(int, GridMenu& menu) {
    InsertBehind(menu, GridHeaderCommand::Hide, {{command::FieldChooser, L"Field &Chooser..."}});
    InsertBehind(menu, GridHeaderCommand::End,
                 {{},
                  {command::MultipleSort, L"&Multiple Sort", true, MultipleSort()},
                  {command::SaveLayout, L"Sa&ve Layout"}});
}

bool CDravelGrid::Refused(BookNeed need) {
    if (Meets(gate_, need)) return false;
    Say(gate_.Refusal());
    gateRefused_ = true;
    return true;
}

void CDravelGrid::GateChanged() {
    if (gateRefused_) Say({});
    Redraw();
}

// Whoever goes elsewhere has read why.
void CDravelGrid::OnSelectionChanged() {
    if (gateRefused_) Say({});
    StatusStale();
}

void CDravelGrid::Import(const std::filesystem::path& file) {
    if (Refused(BookNeed::Change)) return;
    EndOpenEdit();
    entry_.Import(Window(), file);
}

// The commands that read the rows or leave the cell end its edit first.
bool CDravelGrid::OnCommand(std::uint32_t id) {
    if (Refused(NeedOf(id))) return true;
    if ((id >= command::AddTrade && id <= command::ExportCsv) || id == command::Copy) EndOpenEdit();
    switch (id) {
        case command::AddTrade:
            AddDraft();
            return true;
        case command::DeleteTrades:
            entry_.Delete(*this);
            return true;
        case command::Save:
            entry_.Save();
            return true;
        case command::Import:
            Import({});
            return true;
        case command::ImportReport:
            entry_.ShowImportReport(Window());
            return true;
        case command::CopyHtml:
            CopyAsHtml();
            return true;
        case command::FilterBar:
            ToggleFilterBar();
            return true;
        case command::MultipleSort:
            SwitchMultipleSort();
            return true;
        case command::ClearSelection:
            ClearSelection();
            return true;
        case command::Copy:
            CopySelection();
            return true;
        default:
            return LayoutCommand(id);
    }
}
