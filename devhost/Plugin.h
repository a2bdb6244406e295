// The loaded plug-in: its exports, what it registered, and the calls into it.
#pragma once

#include <windows.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

class CTagMessageWriter;

namespace Dravel::DevHost {

class FrameLog;

// A bar that the plug-in offers.
struct BarOffer {
    std::wstring group, name;
    std::uint64_t entry = 0;
};

// What the plug-in asked to be told: the entry and the codes that go there.
struct Subscription {
    std::uint64_t entry = 0;
    std::vector<std::uint16_t> codes;
};

// User-interface thread. Calls into the plug-in go through the addresses that it registered, not through its
// export table, but for GetDllInfo.
class Plugin {
 public:
    explicit Plugin(FrameLog& log) : log_(log) {}

    // False, with `error` set, when the library cannot be loaded or lacks an export.
    bool Load(const std::filesystem::path& library, std::string& error);
    // The frames that GetDllInfo appends for this flag, as they stand one behind the other.
    std::string Introduce(std::uint8_t flag);
    // Gives the terminal's reference back. The library may live on for a moment while it lets its own one go.
    void Unload();

    bool Loaded() const { return module_ != nullptr; }
    const std::filesystem::path& Path() const { return path_; }
    const std::wstring& Title() const { return title_; }
    const std::vector<BarOffer>& Bars() const { return bars_; }

    // False when the plug-in registered no such entry.
    bool OpenBar();
    // Hands a finished frame to the entry of plug-in messages, which opens it itself.
    bool SendMessage(std::string_view frame);
    // Hands an opened frame to the entry of broadcasts.
    bool SendBroadcast(CTagMessageWriter& frame);
    bool TakesBroadcast(std::uint16_t code) const;

 private:
    void Register(std::string_view frame);
    void ReadFrames(std::string_view frames);

    FrameLog& log_;
    HMODULE module_ = nullptr;
    std::filesystem::path path_;
    std::wstring title_;
    std::vector<BarOffer> bars_;
    Subscription broadcasts_, messages_;
};

}  // namespace Dravel::DevHost
