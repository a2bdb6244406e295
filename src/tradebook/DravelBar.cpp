#include "tradebook/DravelBar.h"

#include <utility>

#include "toolkit/ModalLoop.h"
#include "tradebook/BookStatus.h"
#include "tradebook/base/BarPlace.h"

using namespace Dravel;

namespace {

constexpr std::uint32_t kStatusLine = 1;  // its identifier among the bar's children
constexpr char kPlaceKey[] = "Bar";       // of the bar's place in the settings

}  // namespace

CDravelBar::CDravelBar(const BarContext& context, std::function<void()> gone)
    : CVELTSDockingControlBar(context.host), context_(context), gone_(std::move(gone)), book_(context.host) {}

CDravelBar::~CDravelBar() {
    Destroy();
}

bool CDravelBar::OnCreate() {
    OpenStore();
    grid_ = std::make_unique<CDravelGrid>(context_, book_);
    if (!grid_->Create(Window(), Content(), 0)) return false;
    LoadBook();
    MakeStatusLine();
    context_.entry.BookOpened({book_, store_.get(), *this, context_.log, &context_, [this] { StatusStale(); },
                               [this] { return grid_->RowsBeingTyped(); }});
    return true;
}

void CDravelBar::OpenStore() {
    const std::filesystem::path folder = context_.folder.Data();
    store_ = std::make_unique<BookFile>(
        context_.files, context_.clock, context_.log,
        KRV::Base::RecordFilePlace{
            .folder = folder, .backups = folder / "Backup", .name = "DravelBook_Dravel"},
        &book_.Securities());
    if (!store_->Acquire()) store_.reset();
}

void CDravelBar::LoadBook() {
    if (!store_) return;
    book_.BeginLoad();
    store_->LoadBook([this](const TradeRecord& record, bool deleted) { book_.Load(record, deleted); });
    book_.EndLoad();
    if (book_.Replaced() > 0) store_->TradesReplaced(book_.Replaced());
}

void CDravelBar::MakeStatusLine() {
    if (!status_.Create(Window(), kStatusLine)) return;
    status_.SetFont(BarFont());
    context_.notices.SetListener([this] { StatusStale(); });
    grid_->SetStatusListener([this] { StatusStale(); });
    ShowStatus();
}

// Once for all changes until the message queue comes to it: trades come by the thousand.
void CDravelBar::StatusStale() {
    if (std::exchange(statusStale_, true)) return;
    Post([this] {
        statusStale_ = false;
        ShowStatus();
    });
}

void CDravelBar::ShowStatus() {
    std::string said = grid_->EntryHint();
    if (const auto& notices = context_.notices.All(); said.empty() && !notices.empty())
        said = notices.back().text;
    const auto texts = StatusTexts({.shown = grid_->ShownTrades(),
                                    .all = book_.RowCount(),
                                    .selected = grid_->Selection().RowCount(),
                                    .bought = book_.Totals().bought,
                                    .sold = book_.Totals().sold,
                                    .beingTyped = grid_->RowsBeingTyped(),
                                    .changed = book_.Changed(),
                                    .import = context_.entry.ImportSummary(),
                                    .notice = said});
    status_.SetTexts(texts);
}

void CDravelBar::OnSaveProperties(std::string_view key) {
    grid_->SaveProperties(key);
    context_.SaveSettings();
}

// Where the user left it; the first time at the bottom of the frame.
void CDravelBar::TakePlace() {
    DockState place = State();
    place.side = DockSide::Bottom;
    LoadBarPlace(context_.settings, kPlaceKey, place);
    SetState(place);
}

// Place, properties and columns as the user leaves them.
void CDravelBar::KeepLayout() {
    if (!grid_) return;
    SaveBarPlace(context_.settings, kPlaceKey, State());
    SaveProperties(kGridKey);
    grid_->SaveLayout();
}

// A box, a dialog or an import holds the user: what it began is to be ended first. A program that the system
// is asked to end gets its closing message all the same.
bool CDravelBar::Occupied() const {
    return ModalLoop::Runs() || context_.entry.Busy();
}

// Known only when no save is on its way any more: a failed one sets the flag again.
bool CDravelBar::HasUnsaved() {
    context_.entry.FinishSaves();
    return book_.Changed();
}

bool CDravelBar::AskToSaveWhenShown() {
    if (Occupied() || !grid_->LeaveCheck()) return false;
    if (HasUnsaved() && Shown()) context_.entry.AskToSave();
    return true;
}

void CDravelBar::HideAndTell() {
    if (!AskToSaveWhenShown()) return;
    Show(false);
    TellHost(kHidden);
}

bool CDravelBar::OnFrameClose() {
    if (Occupied() || !grid_->LeaveCheck()) return false;
    if (HasUnsaved()) {
        askedAt_ = book_.Revision();
        context_.entry.AskToSave();
    }
    return true;
}

void CDravelBar::OnEndSession(bool ending) {
    if (!ending) return;
    context_.entry.EndImport();
    if (HasUnsaved()) context_.entry.SaveNow();
    KeepLayout();
}

// The frame's closing has asked already, unless the frame went without it or the book changed since.
void CDravelBar::OnDestroy() {
    context_.entry.EndImport();
    if (HasUnsaved() && askedAt_ != book_.Revision()) context_.entry.AskToSave();
    KeepLayout();
    context_.entry.BookClosed();
    context_.notices.SetListener({});
    if (grid_) grid_->SetStatusListener({});
    CVELTSDockingControlBar::OnDestroy();
}

// The last call on this object: `gone` deletes it.
void CDravelBar::OnNcDestroy() {
    const std::function<void()> gone = std::move(gone_);
    if (gone) gone();
}
