// Loads the library, reads its registration frames and calls the entries that they name.
#include "Plugin.h"

#include <cstring>

#include "FrameLog.h"
#include "FrameText.h"
#include "Text.h"
#include "message/TagMessageReader.h"
#include "message/TagMessageWriter.h"
#include "message/TagReceiveQueue.h"
#include "message/Tags.h"

namespace Dravel::DevHost {
namespace {

using IntroduceEntry = void (*)(CTagReceiveQueue*, std::uint8_t*);
using BarEntry = void (*)();
using MessageEntry = void (*)(CTagMessageReader*);

constexpr const char* kExports[] = {"GetDllInfo", "DravelBar", "OnMessage", "OnPluginMessage"};
constexpr std::uint32_t kQueueCapacity = 512;  // less than the plug-in appends: the queue has to grow

template <class Function>
Function At(std::uint64_t address) {
    return reinterpret_cast<Function>(static_cast<std::uintptr_t>(address));
}

std::wstring Block(CTagMessageReader& reader) {
    char16_t block[65] = {};
    if (!reader.ReadBytes(block, 128)) return {};
    return std::wstring(std::u16string_view(block).begin(), std::u16string_view(block).end());
}

}  // namespace

bool Plugin::Load(const std::filesystem::path& library, std::string& error) {
    if (module_) return error = "a plug-in is loaded already", false;
    module_ = LoadLibraryW(library.c_str());
    if (!module_) {
        error = "cannot load " + Narrow(library.native()) + ", system error " + NumberText(GetLastError());
        return false;
    }
    for (const char* name : kExports) {
        if (GetProcAddress(module_, name)) continue;
        error = std::string("the plug-in does not export ") + name;
        Unload();
        return false;
    }
    path_ = library;
    ReadFrames(Introduce(0));
    return true;
}

std::string Plugin::Introduce(std::uint8_t flag) {
    if (!module_) return {};
    CTagReceiveQueue queue(kQueueCapacity, true);
    reinterpret_cast<IntroduceEntry>(reinterpret_cast<void*>(GetProcAddress(module_, "GetDllInfo")))(&queue,
                                                                                                     &flag);
    const std::uint32_t count = queue.Count();
    return count ? std::string(reinterpret_cast<const char*>(queue.Unread()), count) : std::string();
}

void Plugin::ReadFrames(std::string_view frames) {
    for (const std::string_view frame : SplitFrames(frames)) {
        log_.Add(EntryKind::FromPlugin, CodeOf(frame), frame);
        Register(frame);
    }
}

void Plugin::Register(std::string_view frame) {
    CTagMessageReader reader(frame.data(), static_cast<std::uint16_t>(frame.size()));
    if (!reader.Open().opened) return log_.Add(EntryKind::Note, 0, "a registration frame cannot be read");
    BarOffer bar;
    Subscription subscription;
    std::string text;
    while (reader.NextTag()) {
        std::uint16_t code = 0;
        bool read = true;
        switch (reader.CurrentTag()) {
            case tag::DisplayName:
                if ((read = reader.ReadText(text))) title_ = Wide(text);
                break;
            case tag::BarGroup:
                bar.group = Block(reader);
                break;
            case tag::BarName:
                bar.name = Block(reader);
                break;
            case tag::Entry:
                read = reader.Read64(subscription.entry);
                bar.entry = subscription.entry;
                break;
            case tag::SubscribedCode:
                if ((read = reader.Read16(code))) subscription.codes.push_back(code);
                break;
            default:
                read = reader.SkipValue();
        }
        if (!read) log_.Add(EntryKind::Note, 0, "a registration field is cut short");
    }
    if (reader.MessageCode() == msg::BarRegistration && bar.entry) bars_.push_back(bar);
    if (reader.MessageCode() == msg::BroadcastSubscription) broadcasts_ = subscription;
    if (reader.MessageCode() == msg::PluginSubscription) messages_ = subscription;
}

void Plugin::Unload() {
    if (!module_) return;
    FreeLibrary(module_);
    module_ = nullptr;
    title_.clear();
    bars_.clear();
    broadcasts_ = messages_ = {};
}

bool Plugin::OpenBar() {
    if (bars_.empty()) return false;
    At<BarEntry>(bars_.front().entry)();
    return true;
}

bool Plugin::SendMessage(std::string_view frame) {
    if (!messages_.entry) return false;
    log_.Add(EntryKind::ToPlugin, CodeOf(frame), frame);
    CTagMessageReader reader(frame.data(), static_cast<std::uint16_t>(frame.size()));
    At<MessageEntry>(messages_.entry)(&reader);
    return true;
}

bool Plugin::SendBroadcast(CTagMessageWriter& frame) {
    if (!broadcasts_.entry) return false;
    const std::string_view bytes(reinterpret_cast<const char*>(frame.GetData()), frame.GetLength());
    log_.Add(EntryKind::ToPlugin, CodeOf(bytes), bytes);
    CTagMessageReader reader(bytes.data(), static_cast<std::uint16_t>(bytes.size()));
    reader.Open();
    At<MessageEntry>(broadcasts_.entry)(&reader);
    return true;
}

bool Plugin::TakesBroadcast(std::uint16_t code) const {
    for (std::uint16_t taken : broadcasts_.codes)
        if (taken == code) return true;
    return false;
}

}  // namespace Dravel::DevHost
