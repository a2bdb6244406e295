// What all bars of the plug-in share: they tell the terminal about the keyboard, take work from other
// threads, and load and save the properties of what they hold.
#pragma once

#include <functional>
#include <string_view>

#include "host/Host.h"
#include "toolkit/DockingBar.h"
#include "tradebook/base/PostedWork.h"
#include "tradebook/base/UiThread.h"

class CVELTSDockingControlBar : public CKRVPDockingControlBar, public Dravel::IUiThread {
 public:
    explicit CVELTSDockingControlBar(Dravel::IHost& host) : host_(host) {}

    void Post(std::function<void()> work) override;

    // The properties of what the bar holds, under a key of the settings. Saving before loading does nothing:
    // it would write the defaults over what the user chose.
    void LoadProperties(std::string_view key);
    void SaveProperties(std::string_view key);

 protected:
    // What the terminal is told about the bar.
    static constexpr int kGotFocus = 0, kHidden = 1;
    void TellHost(int flag) { host_.Focus(Window(), flag); }

    bool OnMessage(std::uint32_t message, std::uintptr_t wparam, std::intptr_t lparam,
                   std::intptr_t& result) override;
    void OnDestroy() override;
    virtual void OnLoadProperties(std::string_view /*key*/) {}
    virtual void OnSaveProperties(std::string_view /*key*/) {}

    Dravel::IHost& host_;

 private:
    Dravel::PostedWork posted_;
    bool loadingProperties_ = false, propertiesLoaded_ = false;
};
