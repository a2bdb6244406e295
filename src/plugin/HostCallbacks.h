// The functions that the terminal's executable exports for its plug-ins.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "host/HostTypes.h"

class CTagMessageWriter;
class CTagReceiveQueue;

namespace Dravel {

// In the order of their lookup; kCallbackNames has the names in the same order.
enum class Callback : std::uint8_t {
    GetMasterRequest,
    SendToAccess,
    PluginDataSend,
    SendToDataFeed,
    SendDepthBroadCastRequest,
    SendWatchBroadCastRequest,
    SendIndexBroadCastRequest,
    GetOrderNo,
    GetDepth,
    ApplicationFocus,
    OnMessage,
    IsVELTSLogin,
    GetPluginBarID,
    SetPluginBarName,
    PluginRemoveBarID,
    TERBCastRequest,
    PasswordVerification,
    ModifyOrderQtyCheck,
    M2MDisplay,
};
inline constexpr std::array<const char*, 19> kCallbackNames = {
    "GetMasterRequest",
    "SendToAccess",
    "PluginDataSend",
    "SendToDataFeed",
    "SendDepthBroadCastRequest",
    "SendWatchBroadCastRequest",
    "SendIndexBroadCastRequest",
    "GetOrderNo",
    "GetDepth",
    "ApplicationFocus",
    "OnMessage",
    "IsVELTSLogin",
    "GetPluginBarID",
    "SetPluginBarName",
    "PluginRemoveBarID",
    "TERBCastRequest",
    "PasswordVerification",
    "ModifyOrderQtyCheck",
    "M2MDisplay",
};
static_assert(kCallbackNames.size() == static_cast<std::size_t>(Callback::M2MDisplay) + 1);

// Filled once, read-only afterwards, so any thread may read; the functions themselves are for the
// user-interface thread. No name is required: every entry may be null, and a caller that finds it so goes on
// as if the terminal had answered nothing.
class HostCallbacks {
 public:
    using Function = void (*)();
    using GetMasterRequestFunction = void (*)(const MasterRequest*, std::uint64_t zero, MasterAnswer*);
    using PluginDataSendFunction = void (*)(CTagMessageWriter*);  // finished by the caller; copied at once
    using ApplicationFocusFunction = void (*)(void* window, int flag);
    using OnMessageFunction = void (*)(CTagMessageWriter* request, CTagReceiveQueue* answer);
    using GetPluginBarIDFunction = std::uint32_t (*)(const wchar_t* title, const wchar_t* key);

    // `lookUp` answers the address of an exported name or null.
    explicit HostCallbacks(Function (*lookUp)(const char* name));

    GetMasterRequestFunction GetMasterRequest() const {
        return As<GetMasterRequestFunction>(Callback::GetMasterRequest);
    }
    PluginDataSendFunction PluginDataSend() const {
        return As<PluginDataSendFunction>(Callback::PluginDataSend);
    }
    ApplicationFocusFunction ApplicationFocus() const {
        return As<ApplicationFocusFunction>(Callback::ApplicationFocus);
    }
    OnMessageFunction OnMessage() const { return As<OnMessageFunction>(Callback::OnMessage); }
    GetPluginBarIDFunction GetPluginBarID() const {
        return As<GetPluginBarIDFunction>(Callback::GetPluginBarID);
    }

 private:
    template <typename T>
    T As(Callback callback) const {
        return reinterpret_cast<T>(functions_[static_cast<std::size_t>(callback)]);
    }

    std::array<Function, kCallbackNames.size()> functions_;
};

}  // namespace Dravel
