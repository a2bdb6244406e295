// A terminal without callbacks: what it costs to ask it and to tell it is nobody's here. And a user who
// agrees to everything.
#pragma once

#include "host/Host.h"
#include "host/User.h"

namespace Dravel {

class SilentHost final : public IHost {
 public:
    MasterAnswer Ask(std::uint32_t, std::span<const char* const>) override { return {}; }
    bool HasSecurityMaster() const override { return false; }
    void Send(CTagMessageWriter&) override {}
    bool Listens() const override { return false; }
    void Focus(void*, int) override {}
    std::uint64_t MessageEntry() const override { return 0; }
};

struct SilentUser final : IUser {
    std::uint32_t Box(std::string_view, std::string_view, Buttons, Icon, std::uint8_t) override {
        return kAnswerOk;
    }
    void Notice(std::string_view) override {}
};

}  // namespace Dravel
