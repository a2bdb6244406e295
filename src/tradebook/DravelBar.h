// The docking pane that holds the trade book.
#pragma once

#include <memory>
#include <string_view>

#include "records/BookFile.h"
#include "toolkit/EscapeRule.h"
#include "toolkit/StatusLine.h"
#include "tradebook/BarContext.h"
#include "tradebook/DravelGrid.h"
#include "tradebook/TradeBook.h"
#include "tradebook/base/NoticeList.h"
#include "tradebook/base/VELTSDockingControlBar.h"

// User-interface thread. Lives from the first call of DravelBar until its window is destroyed with the host's
// frame.
class CDravelBar final : public CVELTSDockingControlBar {
 public:
    // `gone` is called once the window is no more; it may delete the bar.
    CDravelBar(const Dravel::BarContext& context, std::function<void()> gone);
    ~CDravelBar() override;

    CDravelGrid* Grid() { return grid_.get(); }
    Dravel::TradeBook& Book() { return book_; }

    // Docks or floats where it was when it last went.
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

    void OpenStore();
    void LoadBook();
    void HideAndTell();
    bool Occupied() const;
    bool HasUnsaved();
    Dravel::Rect GridRoom(const Dravel::Rect& content) const;
    void MakeStatusLine();
    void StatusStale();
    void ShowStatus();
    void KeepLayout();

    Dravel::BarContext context_;
    std::function<void()> gone_;
    Dravel::TradeBook book_;
    std::unique_ptr<Dravel::BookFile> store_;  // none: it could not be opened, nothing can be saved
    std::unique_ptr<CDravelGrid> grid_;
    Dravel::StatusLine status_;
    Dravel::EscapeRule escape_;
    bool statusStale_ = false;   // ShowStatus is on its way
    std::uint64_t askedAt_ = 0;  // the book's revision when its frame's closing was asked about
};
