#include "tradebook/DravelBar.h"

#include <utility>

#include "toolkit/ModalLoop.h"
#include "tradebook/BookDamageText.h"
#include "tradebook/BookStatus.h"
#include "tradebook/base/BarPlace.h"

using namespace Dravel;

namespace {

constexpr std::uint32_t kStatusLine = 1;  // its identifier among the bar's children
constexpr char kBookName[] = "DravelBook_Dravel";
constexpr char kPlaceKey[] = "Bar";  // of the bar's place in the settings

KRV::Base::RecordFilePlace PlaceOfBook(const DataFolder& folder) {
    return {.folder = folder.Data(), .backups = folder.Data() / "Backup", .name = kBookName};
}

}  // namespace

CDravelBar::CDravelBar(const BarContext& context, Callbacks callbacks)
    : CVELTSDockingControlBar(context.host),
      context_(context),
      callbacks_(std::move(callbacks)),
      book_(context.host),
      store_(context.files, context.clock, context.log, PlaceOfBook(context.folder), &book_.Securities()),
      journal_(context.files, context.clock, context.log, context.folder.Data(), kBookName),
      ledger_(context.files, journal_, context.folder.Data()),
      opening_({store_, book_, context.files, context.user, context.log, *this}) {}

CDravelBar::~CDravelBar() {
    Destroy();
}

// Nothing of this asks the disk for the book: the bar is there whatever becomes of it.
bool CDravelBar::OnCreate() {
    grid_ = std::make_unique<CDravelGrid>(context_, book_, opening_);
    if (!grid_->Create(Window(), Content(), 0)) return false;
    MakeStatusLine();
    context_.entry.BookOpened({book_, &store_, *this, context_.log, &context_, [this] { StatusStale(); },
                               [this] { return grid_->RowsBeingTyped(); }, &opening_, &journal_,
                               [this] { grid_->DraftsToJournal(); }});
    WatchFiles();
    return true;
}

void CDravelBar::TellDamage(const KRV::VELT::TradeLoadReport& report) {
    TellOfDamage(context_.user, *this, report, book_);
}

// What they say decides what the terminal hears of the book: without them nothing is said.
bool CDravelBar::ReportBook() {
    if (!context_.guard.Known()) return false;
    LoadProperties(kGridKey);
    return true;
}

void CDravelBar::OpeningChanged() {
    grid_->ShowInsteadOfRows(opening_.InsteadOfRows());
    grid_->GateChanged();
    StatusStale();
    if (opening_.MayChange()) callbacks_.through();
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
    const std::string warning = journal_.Warning();
    if (std::exchange(warned_, warning) != warning && !warning.empty()) context_.user.Notice(warning);
    if (said.empty()) said = warning;
    if (const auto& notices = context_.notices.All(); said.empty() && !notices.empty())
        said = notices.back().text;
    const auto texts = StatusTexts({.shown = grid_->ShownTrades(),
                                    .all = book_.RowCount(),
                                    .selected = grid_->Selection().RowCount(),
                                    .bought = book_.Totals().bought,
                                    .sold = book_.Totals().sold,
                                    .beingTyped = grid_->RowsBeingTyped(),
                                    .changed = book_.Changed(),
                                    .state = opening_.Status(),
                                    .known = opening_.RowsKnown(),
                                    .import = context_.entry.ImportSummary(),
                                    .notice = said});
    status_.SetTexts(texts);
}

void CDravelBar::OnSaveProperties(std::string_view key) {
    grid_->SaveProperties(key);
    context_.SaveSettings();
}

// Every two seconds: what could not be read or written before.
void CDravelBar::RetryFiles() {
    opening_.Try();
    ledger_.Look();
    context_.guard.Retry();
    if (context_.guard.AskIsDue()) Post([this] { context_.guard.Ask(context_.user); });
    if (grid_) grid_->RetryProfile();
    context_.entry.RetryFiles();
    TellOfSettings();
}

void CDravelBar::TellOfSettings() {
    if (const std::string notice = context_.guard.TakeNotice(); !notice.empty()) context_.user.Notice(notice);
}

// Where the user left it; the first time at the bottom of the frame.
void CDravelBar::TakePlace() {
    DockState place = State();
    if (placed_ && *placed_ != place) return;
    place.side = DockSide::Bottom;
    LoadBarPlace(context_.settings, kPlaceKey, place);
    SetState(place);
    placed_ = State();
}

// Place, properties and columns as the user leaves them.
void CDravelBar::KeepLayout() {
    if (!grid_) return;
    // Before the settings are known this would be the place without any.
    if (context_.guard.Known()) SaveBarPlace(context_.settings, kPlaceKey, State());
    SaveProperties(kGridKey);
    grid_->SaveLayout();
}

// A box, a dialog or an import holds the user: what it began is to be ended first. A program that the system
// is asked to end gets its closing message all the same.
bool CDravelBar::Occupied() const {
    return ModalLoop::Runs() || context_.entry.Busy();
}

// Known only when no save is on its way any more: a failed one sets the flag again. A book that is not there
// yet has nothing to be saved.
bool CDravelBar::HasUnsaved() {
    if (!opening_.Through()) return false;
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

// A save that was wanted and failed keeps the terminal open, once: who closes it again without a save in
// between wants it closed.
bool CDravelBar::OnFrameClose() {
    if (Occupied() || !grid_->LeaveCheck()) return false;
    if (!HasUnsaved()) return true;
    askedAt_ = book_.Revision();
    const FileSum saved = store_.Sum();
    const AskEnd answer = context_.entry.AskToSave();
    if (answer == AskEnd::NotWanted) discardedAt_ = journal_.Told();
    if (answer != AskEnd::Failed || stayedAt_ == saved || !Window()) return true;
    stayedAt_ = saved;
    askedAt_ = kNotAsked;
    return false;
}

void CDravelBar::OnEndSession(bool ending) {
    if (!ending) return;
    context_.entry.EndImport();
    // As Enter would, so that a trade whose last cell is still open is saved. A box about it is only posted,
    // and the session does not wait for that.
    if (grid_) grid_->LeaveCheck();
    if (HasUnsaved()) context_.entry.SaveNow();
    KeepLayout();
}

// The frame's closing has asked already, unless the frame went without it or the book changed since.
void CDravelBar::OnDestroy() {
    opening_.Stop();
    context_.entry.EndImport();
    if (HasUnsaved() && askedAt_ != book_.Revision()) {
        if (context_.entry.AskToSave() == AskEnd::NotWanted) discardedAt_ = journal_.Told();
    }
    KeepLayout();
    context_.entry.BookClosed();
    EndJournal();
    context_.notices.SetListener({});
    if (grid_) grid_->SetStatusListener({});
    CVELTSDockingControlBar::OnDestroy();
}

// The last call on this object: `gone` deletes it.
void CDravelBar::OnNcDestroy() {
    const std::function<void()> gone = std::move(callbacks_.gone);
    if (gone) gone();
}
