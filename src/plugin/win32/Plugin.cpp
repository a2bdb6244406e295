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
      entry_({host_, user_, SystemFiles(), SystemClock(), clients_, &ShowImportDialog, reportWindow_}) {}

Plugin::OpenBook::OpenBook(Plugin& plugin)
    : logThread(plugin.log_),
      answers(settings),
      notices(SystemClock()),
      bar({plugin.host_, plugin.user_, plugin.entry_, SystemFiles(), SystemClock(), plugin.folder_, settings,
           plugin.log_, notices},
          [&plugin] { plugin.BarGone(); }) {
    settings.LoadFile(SystemFiles(), plugin.folder_.Settings());
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
        pending_.clear();
        if (created_) {
            open_->bar.Focus();
            return;
        }
    } else {
        CreateBar();
        if (!open_) return;
    }
    // The terminal may end the bar while it hears of the book.
    open_->bar.LoadProperties(kGridKey);
    if (!open_) return;
    // What the terminal sends while it hears of them is no longer kept for later.
    created_ = true;
    HandOverPendingItems();
    if (open_) open_->bar.Focus();
}

void Plugin::CreateBar() {
    void* const frame = TerminalHost::MainFrame();
    const std::uint32_t identifier = host_.BarID(kBarTitle, kBarKey);
    HoldLibrary();
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
    created_ = false;
    parting_ = true;
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
    ReleaseLibrary();
}

// While windows of the library live, the library must not go, even if the host frees it too early.
void Plugin::HoldLibrary() {
    HMODULE self;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<LPCWSTR>(&Plugin::Instance),
                       &self);
}

// Given back by the system when no code of ours runs any more on that thread: a FreeLibrary from here could
// take away the code to which it returns.
void Plugin::ReleaseLibrary() {
    const auto release = [](PTP_CALLBACK_INSTANCE instance, void* self) {
        FreeLibraryWhenCallbackReturns(instance, static_cast<HMODULE>(self));
    };
    TrySubmitThreadpoolCallback(release, Module(), nullptr);
}

void Plugin::PendingItems() {
    if (open_ && created_) HandOverPendingItems();
}

void Plugin::HandOverPendingItems() {
    while (open_ && !pending_.empty()) {
        TradeRecord item = pending_.front();
        pending_.pop_front();
        open_->bar.Book().Add(item);
    }
}

void Plugin::AskToSave() {
    if (open_ && created_) open_->bar.AskToSaveWhenShown();
}

void Plugin::EntryQuery() {
    CTagMessageWriter frame(msg::EntryAnnouncement);
    BuildEntryAnnouncement(frame, host_.MessageEntry());
    host_.Send(frame);
}

void Plugin::TradeFromHost(CTagMessageReader& trade) {
    TradeRecord record{};
    ReadTradeFrame(trade, record);
    if (open_ && created_) {
        open_->bar.Book().AddFromHost(record);
    } else {
        pending_.push_back(record);
    }
}

void Plugin::SelectedContract(CTagMessageReader& query) {
    const std::uint64_t address = ReplyAddress(query);
    if (address == 0) return;
    CTagMessageWriter answer(msg::SelectedContractAnswer);
    const CDravelGrid* const grid = open_ && created_ ? open_->bar.Grid() : nullptr;
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
