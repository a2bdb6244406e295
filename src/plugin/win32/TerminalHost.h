// The terminal as the domain sees it, over the callbacks that its executable exports.
#pragma once

#include <array>
#include <cstdint>

#include "host/Host.h"
#include "plugin/HostCallbacks.h"
#include "support/Log.h"
#include "support/SecurityMaster.h"

namespace Dravel {

// User-interface thread. A callback that is not exported answers nothing; in the place of a missing
// GetMasterRequest the terminal's master file is asked. One that throws or faults has answered nothing, which
// is logged: at once, and then once in a minute for each callback, since an import may ask a million times.
class TerminalHost final : public IHost {
 public:
    explicit TerminalHost(std::uint64_t messageEntry) : messageEntry_(messageEntry) {}

    // Reads the master file when the terminal has no callback for it and it was not read before. No file is
    // no failure.
    void LoadMasterFile(IFiles& files, const std::filesystem::path& path, ILog& log);

    MasterAnswer Ask(std::uint32_t kind, std::span<const char* const> texts) override;
    bool HasSecurityMaster() const override;
    void Send(CTagMessageWriter& frame) override;
    bool Listens() const override;
    void Focus(void* window, int flag) override;
    std::uint64_t MessageEntry() const override { return messageEntry_; }

    // The identifier for a new bar; 0 when the terminal gives none.
    std::uint32_t BarID(const wchar_t* title, const wchar_t* key) const;

    // The visible, unowned top-level window of this thread (HWND): the terminal's main frame. nullptr without
    // one.
    static void* MainFrame();

 private:
    // False: the callback threw or faulted.
    template <class Work>
    bool Call(Callback callback, const Work& work) const;
    void TellFailure(Callback callback, std::uint32_t code) const;

    std::uint64_t messageEntry_;
    SecurityMaster master_;  // trades keep its entries: never read anew
    mutable std::array<std::uint64_t, kCallbackNames.size()> toldAt_{};  // ticks; 0: not yet
};

}  // namespace Dravel
