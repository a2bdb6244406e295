// The docking pane that holds the trade book.
#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "records/BookFile.h"
#include "records/BookJournal.h"
#include "records/JournalLedger.h"
#include "toolkit/EscapeRule.h"
#include "toolkit/StatusLine.h"
#include "tradebook/BarContext.h"
#include "tradebook/BookOpening.h"
#include "tradebook/DravelGrid.h"
#include "tradebook/TradeBook.h"
#include "tradebook/base/NoticeList.h"
#include "tradebook/base/VELTSDockingControlBar.h"

// User-interface thread. Lives from the first call of DravelBar until its window is destroyed with the host's
// frame.
class CDravelBar final : public CVELTSDockingControlBar, private Dravel::IOpeningSteps {
 public:
    struct Callbacks {
        // The book is there but for the trades that waited: they are to enter it now.
        std::function<void()> enterWaiting;
        // The opening is through, and what enters the book can be saved.
        std::function<void()> through;
        // The window is no more; it may delete the bar.
        std::function<void()> gone;
    };
    CDravelBar(const Dravel::BarContext& context, Callbacks callbacks);
    ~CDravelBar() override;

    CDravelGrid* Grid() { return grid_.get(); }
    Dravel::TradeBook& Book() { return book_; }
    // Which trades that waited are safe in it.
    Dravel::IWaitingLedger& Ledger() { return ledger_; }

    // Opens the book, as far as it can be had now; from its creation on the bar goes on trying by itself. The
    // terminal may end the bar while it hears of the book.
    void OpenBook() { opening_.Try(); }
    // The book is there: it takes trades, answers and asks.
    bool BookThere() const { return opening_.Through(); }

    // Docks or floats where it was when it last went. Called again, it moves the bar only when nobody else
    // has: the settings may come late.
    void TakePlace();
    // Ends an open edit, then asks when something changed since the last save and the bar is shown. False:
    // validation has spoken, and the grid is not to be left.
    bool AskToSaveWhenShown();

 private:
    void OnLoadProperties(std::string_view key) override { grid_->LoadProperties(key); }
    void OnSaveProperties(std::string_view key) override;
    bool OnCreate() override;
    bool OnMessage(std::uint32_t message, std::uintptr_t wparam, std::intptr_t lparam,
                   std::intptr_t& result) override;
    void OnSize(const Dravel::Rect& content) override;
    void OnPaint(void* hdc, const Dravel::Rect& content) override;
    void OnSetFocus() override;
    void OnPressCloseButton() override { HideAndTell(); }
    void OnTabCloseButton() override { HideAndTell(); }
    void OnEscape() override {
        if (escape_.Hides()) HideAndTell();
    }
    bool PreTranslateMessage(void* child, std::uint32_t message, std::uintptr_t wparam,
                             std::intptr_t lparam) override;
    bool OnFrameClose() override;
    void OnEndSession(bool ending) override;
    void OnDestroy() override;
    void OnNcDestroy() override;

    // The steps of the opening.
    void TellDamage(const KRV::VELT::TradeLoadReport& report) override;
    Dravel::FileStatus RestoreChanges() override;
    void ShowLook() override { grid_->LoadLook(Dravel::kGridKey); }
    bool ReportBook() override;
    void EnterWaiting() override { callbacks_.enterWaiting(); }
    void OpeningChanged() override;

    void EndJournal();
    void TellOfJournal(const Dravel::JournalOpening& opening, std::uint64_t changes);
    void HideAndTell();
    bool Occupied() const;
    bool HasUnsaved();
    Dravel::Rect GridRoom(const Dravel::Rect& content) const;
    void MakeStatusLine();
    void StatusStale();
    void ShowStatus();
    void KeepLayout();
    void WatchFiles();
    void RetryFiles();
    void TellOfSettings();

    Dravel::BarContext context_;
    Callbacks callbacks_;
    Dravel::TradeBook book_;
    Dravel::BookFile store_;
    Dravel::BookJournal journal_;
    Dravel::JournalLedger ledger_;
    Dravel::BookOpening opening_;
    std::unique_ptr<CDravelGrid> grid_;
    Dravel::StatusLine status_;
    Dravel::EscapeRule escape_;
    bool statusStale_ = false;  // ShowStatus is on its way
    // The book's revision when its frame's closing was asked about.
    static constexpr std::uint64_t kNotAsked = 0;
    std::uint64_t askedAt_ = kNotAsked;
    bool journalOpen_ = false;
    // What the journal had been told when the user would not save at the terminal's end.
    std::optional<std::uint64_t> discardedAt_;
    std::string warned_;  // of unsaved work that is not protected
    // What was saved when the frame stayed open because a save at its closing failed.
    std::optional<Dravel::FileSum> stayedAt_;
    std::optional<Dravel::DockState> placed_;  // where TakePlace has put the bar
};
