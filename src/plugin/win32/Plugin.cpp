#include "plugin/win32/Plugin.h"

#include <windows.h>

#include <filesystem>
#include <utility>

#include "entry/DlgImportDravel.h"
#include "message/TagMessageWriter.h"
#include "message/Tags.h"
#include "plugin/Answers.h"
#include "plugin/win32/Exports.h"
#include "records/TradeFrame.h"
#include "support/OuterCall.h"
#include "toolkit/ActivationContext.h"
#include "toolkit/Module.h"
#include "toolkit/PopupWindow.h"
#include "tradebook/TradeColumns.h"

namespace Dravel {

namespace {

constexpr wchar_t kBarTitle[] = L"Dravel";
constexpr wchar_t kBarKey[] = L"Dravel";
constexpr Rect kFloatingPlace{100, 100, 600, 400};

std::filesystem::path WorkingFolder() {
    wchar_t folder[32768];
    const DWORD length = GetCurrentDirectoryW(static_cast<DWORD>(std::size(folder)), folder);
    return std::filesystem::path(std::wstring(folder, length < std::size(folder) ? length : 0));
}

}  // namespace

static Plugin* theOne = nullptr;

Plugin& Plugin::Instance() {
    return *theOne;
}
void Plugin::Make() {
    theOne = new Plugin;
    SetFailureLog(&theOne->log_);
}
void Plugin::Unmake() noexcept {
    RemoveCrashDump();
    SetFailureLog(nullptr);
    delete std::exchange(theOne, nullptr);
}

Plugin::Plugin()
    : folder_(WorkingFolder()),
      log_(SystemFiles(), SystemClock(), folder_.Log()),
      host_(reinterpret_cast<std::uintptr_t>(&OnPluginMessage)),
      clients_(SystemFiles(), host_, folder_.FormatSets()),
      reportWindow_(SystemFiles(), user_),
      entry_({host_, user_, SystemFiles(), SystemClock(), clients_, &ShowImportDialog, reportWindow_}),
      waiting_(SystemFiles(), SystemClock(), log_, folder_.Data(), GetCurrentProcessId()),
      left_(SystemFiles(), SystemClock(), log_, folder_.Data()) {}

Plugin::OpenBook::OpenBook(Plugin& plugin)
    : logThread(plugin.log_),
      guard(SystemFiles(), SystemClock(), plugin.log_, settings, plugin.folder_.Settings()),
      answers(settings),
      notices(SystemClock()),
      bar({plugin.host_, plugin.user_, plugin.entry_, SystemFiles(), SystemClock(), plugin.folder_, settings,
           plugin.log_, notices, guard},
          {[&plugin] { plugin.EnterWaiting(); }, [&plugin] { plugin.AskAboutLeft(); },
           [&plugin] { plugin.BarGone(); }}) {
    guard.Open();
    guard.WhenKnown([&plugin] { plugin.SettingsCame(); });
}

void Plugin::ShowBar() {
    if (showing_ || parting_) return;
    showing_ = true;
    const struct Cleared {
        bool& flag;
        ~Cleared() { flag = false; }
    } cleared{showing_};

    const ActivationScope activation;
    if (open_) {
        open_->bar.Book().Securities().AskAgain();
        open_->bar.Show(true);
        if (BookThere()) waiting_.DiscardPending();
    } else {
        CreateBar();
        // The terminal may end the bar while it hears of the book.
        if (open_) open_->bar.OpenBook();
    }
    if (open_) open_->bar.Focus();
}

void Plugin::SettingsCame() {
    open_->bar.Post([this] {
        open_->bar.TakePlace();
        open_->bar.OpenBook();
    });
}

void Plugin::CreateBar() {
    void* const frame = TerminalHost::MainFrame();
    const std::uint32_t identifier = host_.BarID(kBarTitle, kBarKey);
    TellFrameOfLog(frame);
    open_ = std::make_unique<OpenBook>(*this);
    CDravelBar& bar = open_->bar;
    host_.LoadMasterFile(SystemFiles(), folder_.MasterFile(), log_);
    if (!bar.Create(frame, kBarTitle, kFloatingPlace, identifier)) {
        BarGone();
        return;
    }
    user_.Attach(bar.Window(), &log_, &open_->answers, &open_->notices);
    bar.TakePlace();
    bar.Show(true);
}

// The terminal hears of each warning and error by the registered message "KRV_MSG_LOG": wParam is the level,
// 1 or 2. Posting waits for nobody.
void Plugin::TellFrameOfLog(void* frame) {
    const UINT message = RegisterWindowMessageW(L"KRV_MSG_LOG");
    if (!frame || message == 0) return;
    log_.Tell([frame, message](LogLevel level) {
        PostMessageW(static_cast<HWND>(frame), message, static_cast<WPARAM>(level), 0);
    });
}

// The bar's window is no more: everything that lived with it goes, and the next call makes a new one.
void Plugin::BarGone() {
    if (!open_) return;
    ClosePopups();
    user_.Attach(nullptr, nullptr, nullptr, nullptr);
    parting_ = true;
    waiting_.BookGone();
    left_.BookGone();
    // The bar may be gone under a box or a request of its own, which return to what it owned.
    struct Parting {
        Plugin& plugin;
        std::unique_ptr<OpenBook> gone;
        ~Parting() { plugin.LetGo(std::move(gone)); }
    };
    KeepForCalls(std::make_shared<Parting>(*this, std::move(open_)));
}

void Plugin::LetGo(std::unique_ptr<OpenBook> gone) {
    gone.reset();
    log_.Tell({});
    parting_ = false;
}

void Plugin::PendingItems() {
    if (BookThere()) EnterWaiting();
}

void Plugin::EnterWaiting() {
    if (open_) waiting_.HandOver(open_->bar.Ledger(), waitingBook_);
}

// Trades of an earlier run. The question holds nothing up.
void Plugin::AskAboutLeft() {
    open_->bar.Post([this] { left_.Ask(user_, open_->bar.Ledger(), waitingBook_); });
}

bool Plugin::WaitingBook::Prepare(TradeRecord& record) {
    if (plugin.open_ && !record.security)
        record.security = plugin.open_->bar.Book().Securities().Find(record);
    return plugin.open_ != nullptr;
}

std::uint64_t Plugin::WaitingBook::Revision() const {
    return plugin.open_ ? plugin.open_->bar.Book().Revision() : 0;
}

void Plugin::WaitingBook::Enter(TradeRecord& record, const WaitingSource& source) {
    TradeBook& book = plugin.open_->bar.Book();
    const ChangeSource from{ChangeKind::Terminal, source.file, source.number};
    if (source.kind == WaitingSource::Kind::Pending) {
        book.Add(record, from);
    } else {
        book.AddFromHost(record, from);
    }
}

void Plugin::AskToSave() {
    if (BookThere()) open_->bar.AskToSaveWhenShown();
}

void Plugin::EntryQuery() {
    CTagMessageWriter frame(msg::EntryAnnouncement);
    BuildEntryAnnouncement(frame, host_.MessageEntry());
    host_.Send(frame);
}

void Plugin::TradeFromHost(CTagMessageReader& trade) {
    TradeRecord record{};
    ReadTradeFrame(trade, record);
    if (BookThere()) {
        open_->bar.Book().AddFromHost(record);
    } else {
        waiting_.Take(record, open_ ? WaitingSource::Kind::HeldBack : WaitingSource::Kind::Pending);
    }
}

void Plugin::SelectedContract(CTagMessageReader& query) {
    const std::uint64_t address = ReplyAddress(query);
    if (address == 0) return;
    CTagMessageWriter answer(msg::SelectedContractAnswer);
    const CDravelGrid* const grid = BookThere() ? open_->bar.Grid() : nullptr;
    const std::uint32_t row = grid ? grid->SelectedRow() : kNoRow;
    if (row != kNoRow) {
        const auto cell = [&](column::Index index) { return grid->Cell(row, index); };
        const std::string exchange = cell(column::Exchange), security = cell(column::SecurityID),
                          client = cell(column::ClientID), price = cell(column::Price);
        const SelectedCells cells{exchange, security, client, price};
        BuildSelectedContract(answer, &cells);
    }
    if (!Reply(address, answer))
        ReportFailure("SelectedContract", "The terminal's function for the answer failed.");
}

}  // namespace Dravel
